#include "devhost/calling/native_call.h"

#include <dlfcn.h>

#include <cstring>
#include <stdexcept>

#include "devhost/calling/native_values.h"
#include "devhost/language/arguments.h"

namespace devhost {
namespace {

std::string where(const Declaration& declaration, const std::string& place) { return declaration.name + ", " + place; }

// --- From the host to a plugin

/// Large enough for any result, and for the whole register that libffi stores small ones as.
union ResultBuffer {
  ffi_arg whole;
  double real;
  std::uint64_t bits;
};

/// The arguments of one call, in the form in which libffi wants them: an address each.
class Frame {
 public:
  Frame(Runtime& runtime, const Declaration& declaration, const Values& arguments)
      : runtime_(runtime), declaration_(declaration) {
    checkArgumentCount(declaration, arguments.size());
    const bool all_given = arguments.size() == declaration.parameters.size();
    std::size_t next = 0;
    for (const Parameter& parameter : declaration.parameters) {
      const bool given = all_given || !parameter.by_reference;
      slots_.push_back(slotFor(parameter, given ? arguments[next++] : initialValue(parameter.type)));
    }
    for (Slot& slot : slots_) {
      addresses_.push_back(&slot.bits);
    }
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      const bool by_reference = declaration.parameters[i].by_reference;
      pointers_.push_back(by_reference ? static_cast<void*>(&addresses_[i]) : addresses_[i]);
      if (by_reference) {
        // During the call the plugin owns the object in a slot: it releases that before it stores another.
        runtime.handles().give(slots_[i].counted);
      }
    }
  }

  void** pointers() { return pointers_.data(); }

  /// Takes over what the slots hold.
  std::vector<ByReference> reclaim() {
    std::vector<ByReference> results;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      const Parameter& parameter = declaration_.parameters[i];
      if (parameter.by_reference) {
        const std::string place = where(declaration_, "by reference " + parameter.name);
        const std::uint64_t bits = slots_[i].bits;
        Value value = fromSlot(runtime_, &bits, parameter.type, Ownership::kHandedOver, place.c_str());
        results.push_back({parameter.name, parameter.type, std::move(value), bits});
      }
    }
    return results;
  }

 private:
  Slot slotFor(const Parameter& parameter, const Value& argument) {
    if (const auto* const raw = std::get_if<RawSlot>(&argument.storage()); raw != nullptr && parameter.by_reference) {
      return {raw->bits, nullptr};
    }
    try {
      return toSlot(runtime_, argument, parameter.type);
    } catch (const ValueError& error) {
      throw ValueError(where(declaration_, "argument " + parameter.name) + ": " + error.what());
    }
  }

  Runtime& runtime_;
  const Declaration& declaration_;
  std::vector<Slot> slots_;  // keeps the objects behind handles alive
  std::vector<std::uint64_t*> addresses_;
  std::vector<void*> pointers_;
};

Value resultOf(Runtime& runtime, const Declaration& declaration, const ResultBuffer& buffer) {
  if (!declaration.result) {
    return {};
  }
  const std::string place = where(declaration, "result");
  const bool is_boolean = !declaration.result->is_array && declaration.result->type == Type::kBoolean;
  if (is_boolean && (buffer.bits & 0xFFU) > 1) {
    runtime.handles().addFault(place + ": a Boolean of " + std::to_string(buffer.bits & 0xFFU));
  }
  return fromSlot(runtime, &buffer, *declaration.result, Ownership::kHandedOver, place.c_str());
}

// --- From a plugin to a method of an object

/// A plugin does not release strings and arrays that it passes to a method of an object. Objects stay its own.
Ownership ownershipOf(const Parameter& parameter) {
  const bool is_object = !parameter.type.is_array && factsOf(parameter.type.type).form == Form::kObject;
  return parameter.by_reference || is_object ? Ownership::kBorrowed : Ownership::kHandedOver;
}

/// Stores into the plugin's variable as a plugin stores into the host's: the previous object is released.
void storeThrough(Runtime& runtime, void* target, const Parameter& parameter, const Value& value) {
  const Slot slot = toSlot(runtime, value, parameter.type);
  const std::string place = "by reference " + parameter.name;
  fromSlot(runtime, target, parameter.type, Ownership::kHandedOver, place.c_str());
  runtime.handles().give(slot.counted);
  std::memcpy(target, &slot.bits, parameter.type.is_array ? sizeof slot.bits : factsOf(parameter.type.type).width);
}

// libffi makes functions at run time since macOS 10.15; earlier systems have no such function.

/// A closure, and the address to call in `entry`; or null.
ffi_closure* allocateClosure(void** entry) {
  if (__builtin_available(macOS 10.15, *)) {
    return static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), entry));
  }
  return nullptr;
}

bool prepareClosure(ffi_closure* closure, ffi_cif* interface, void (*function)(ffi_cif*, void*, void**, void*),
                    void* context, void* entry) {
  if (__builtin_available(macOS 10.15, *)) {
    return ffi_prep_closure_loc(closure, interface, function, context, entry) == FFI_OK;
  }
  return false;
}

/// Null is ignored.
void freeClosure(ffi_closure* closure) {
  if (closure == nullptr) {
    return;
  }
  if (__builtin_available(macOS 10.15, *)) {
    ffi_closure_free(closure);
  }
}

/// Code that a plugin can call, made for one method.
class NativeMethod {
 public:
  NativeMethod(Runtime& runtime, Declaration declaration, Handler handler)
      : runtime_(runtime),
        declaration_(std::move(declaration)),
        handler_(std::move(handler)),
        signature_(declaration_, true),
        closure_(allocateClosure(&address_)) {
    if (closure_ == nullptr ||
        !prepareClosure(closure_, &signature_.interface(), &NativeMethod::enter, this, address_)) {
      throw std::runtime_error("no native entry for " + declaration_.text);
    }
  }
  ~NativeMethod() { freeClosure(closure_); }
  NativeMethod(const NativeMethod&) = delete;
  NativeMethod& operator=(const NativeMethod&) = delete;

  void* address() { return address_; }

 private:
  static void enter(ffi_cif* /*interface*/, void* result, void** arguments, void* self) {
    static_cast<NativeMethod*>(self)->run(result, arguments);
  }

  void run(void* result, void** arguments) {
    std::uint64_t bits = 0;
    // A plugin is calling: nothing may be thrown through it.
    try {
      const Value value = invoke(arguments);
      if (declaration_.result) {
        const Slot slot = toSlot(runtime_, value, *declaration_.result);
        runtime_.handles().give(slot.counted);
        bits = slot.bits;
      }
    } catch (...) {
      runtime_.holdException(std::current_exception());
    }
    if (declaration_.result) {
      std::memcpy(result, &bits, sizeof bits);
    }
  }

  Value invoke(void** arguments) {
    void* self = nullptr;
    std::memcpy(&self, arguments[0], sizeof self);
    const std::string place = where(declaration_, "object");
    const Ref<Object> object = runtime_.handles().find<Object>(self, place.c_str());

    Values values;
    std::vector<void*> sources;
    for (std::size_t i = 0; i < declaration_.parameters.size(); ++i) {
      const Parameter& parameter = declaration_.parameters[i];
      sources.push_back(arguments[i + 1]);
      if (parameter.by_reference) {
        std::memcpy(&sources.back(), arguments[i + 1], sizeof(void*));
      }
      const std::string name = where(declaration_, "argument " + parameter.name);
      values.push_back(fromSlot(runtime_, sources.back(), parameter.type, ownershipOf(parameter), name.c_str()));
    }
    if (!object) {
      throw ValueError(place + ": called on an object that does not live");
    }

    const Values before = values;
    Value result = handler_(*object, values);
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (declaration_.parameters[i].by_reference && !(values[i] == before[i])) {
        storeThrough(runtime_, sources[i], declaration_.parameters[i], values[i]);
      }
    }
    return result;
  }

  Runtime& runtime_;
  Declaration declaration_;
  Handler handler_;
  NativeSignature signature_;
  void* address_ = nullptr;
  ffi_closure* closure_;
};

// --- Autorelease pools

using Push = void* (*)();
using Pop = void (*)(void*);

Push push_pool = nullptr;
Pop pop_pool = nullptr;

void* findSymbol(void* library, const char* name) {
  void* const in_process = dlsym(RTLD_DEFAULT, name);
  return in_process != nullptr ? in_process : dlsym(library, name);
}

}  // namespace

const ByReference& CallResult::find(std::string_view name) const {
  for (const ByReference& parameter : by_reference) {
    if (sameName(parameter.name, name)) {
      return parameter;
    }
  }
  throw ValueError("no by-reference parameter is called " + std::string(name));
}

CallResult callFunction(Runtime& runtime, const Declaration& declaration, const void* function,
                        const Values& arguments) {
  NativeSignature signature(declaration, false);
  Frame frame(runtime, declaration, arguments);
  ResultBuffer buffer{};
  {
    const CurrentRuntime current(runtime);
    const AutoreleasePool pool;
    try {
      ffi_call(&signature.interface(), reinterpret_cast<void (*)()>(const_cast<void*>(function)), &buffer,
               frame.pointers());
    } catch (...) {
      frame.reclaim();
      runtime.takeException();
      throw;
    }
  }
  CallResult result;
  result.by_reference = frame.reclaim();
  result.result = resultOf(runtime, declaration, buffer);
  if (const std::exception_ptr held = runtime.takeException()) {
    std::rethrow_exception(held);
  }
  return result;
}

void addMethod(Runtime& runtime, Object& object, std::string_view declaration, Handler handler) {
  Declaration parsed = parseDeclaration(declaration);
  const std::string signature = parsed.signature();
  const auto method = std::make_shared<NativeMethod>(runtime, std::move(parsed), std::move(handler));
  object.setMethod(signature, std::shared_ptr<void>(method, method->address()));
}

void findAutoreleasePools(void* library) {
  if (push_pool != nullptr) {
    return;
  }
  void* const push = findSymbol(library, "objc_autoreleasePoolPush");
  void* const pop = findSymbol(library, "objc_autoreleasePoolPop");
  if (push != nullptr && pop != nullptr) {
    push_pool = reinterpret_cast<Push>(push);
    pop_pool = reinterpret_cast<Pop>(pop);
  }
}

AutoreleasePool::AutoreleasePool() {
  if (push_pool != nullptr) {
    pool_ = push_pool();
  }
}

AutoreleasePool::~AutoreleasePool() {
  if (pool_ != nullptr) {
    pop_pool(pool_);
  }
}

}  // namespace devhost
