#include "devhost/calling/native_call.h"

#include <array>
#include <cstring>
#include <stdexcept>

#include "devhost/calling/native_values.h"
#include "devhost/language/arguments.h"
#include "devhost/runtime/autorelease.h"

namespace devhost {
namespace {

/// Large enough for any result, and for the whole register that libffi stores small ones as.
union ResultBuffer {
  ffi_arg whole;
  double real;
  std::uint64_t bits;
};

std::string where(const Declaration& declaration, const std::string& place) { return declaration.name + ", " + place; }

/// The arguments of one call, in the form in which libffi wants them: an address each.
class Frame {
 public:
  Frame(Host& host, const Declaration& declaration, const Values& arguments) : host_(host), declaration_(declaration) {
    checkArgumentCount(declaration, arguments.size());
    const std::size_t count = declaration.parameters.size();
    const bool all_given = arguments.size() == count;
    slots_.reserve(count);
    addresses_.reserve(count);
    values_.reserve(count);
    std::size_t next = 0;
    for (const Parameter& parameter : declaration.parameters) {
      const bool given = all_given || !parameter.by_reference;
      add(parameter, given ? arguments[next++] : initialValue(host, parameter.type));
    }
    for (std::size_t i = 0; i < count; ++i) {
      pointers_.push_back(declaration.parameters[i].by_reference ? static_cast<void*>(&addresses_[i])
                                                                 : static_cast<void*>(&slots_[i]));
    }
    lendSlots();
  }

  void** pointers() { return pointers_.data(); }

  /// Takes over what the slots hold.
  std::vector<ByReference> reclaim() {
    std::vector<ByReference> results;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      const Parameter& parameter = declaration_.parameters[i];
      if (parameter.by_reference) {
        const std::string place = where(declaration_, "by reference " + parameter.name);
        Value value = fromSlot(host_, &slots_[i], parameter.type, Ownership::kHandedOver, place.c_str());
        results.push_back({parameter.name, parameter.type, std::move(value), slots_[i]});
      }
    }
    return results;
  }

 private:
  void add(const Parameter& parameter, const Value& argument) {
    if (const auto* const raw = std::get_if<RawSlot>(&argument.storage()); raw != nullptr && parameter.by_reference) {
      values_.emplace_back();
      slots_.push_back(raw->bits);
    } else {
      values_.push_back(converted(parameter, argument));
      slots_.push_back(toSlot(values_.back(), parameter.type));
    }
    addresses_.push_back(&slots_.back());
  }

  Value converted(const Parameter& parameter, const Value& argument) {
    try {
      return convertToArgument(host_, argument, parameter.type);
    } catch (const ValueError& error) {
      throw ValueError(declaration_.name + ", argument " + parameter.name + ": " + error.what());
    }
  }

  /// For the time of the call the plugin owns what the slots hold: it releases that before it stores something else.
  void lendSlots() {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      Counted* const counted = declaration_.parameters[i].by_reference ? countedOf(values_[i]) : nullptr;
      if (counted != nullptr) {
        counted->addPluginReference();
      }
    }
  }

  Host& host_;
  const Declaration& declaration_;
  Values values_;  // keeps the handles alive
  std::vector<std::uint64_t> slots_;
  std::vector<std::uint64_t*> addresses_;
  std::vector<void*> pointers_;
};

Value resultOf(Host& host, const Declaration& declaration, const ResultBuffer& buffer) {
  if (!declaration.result) {
    return {};
  }
  const std::string place = where(declaration, "result");
  const bool is_boolean = !declaration.result->is_array && declaration.result->type == Type::kBoolean;
  if (is_boolean && (buffer.bits & 0xFFU) > 1) {
    host.handles().addFault(place + ": a Boolean of " + std::to_string(buffer.bits & 0xFFU));
  }
  return fromSlot(host, &buffer, *declaration.result, Ownership::kHandedOver, place.c_str());
}

/// A plugin makes no later release of a string, text or array that it passes to a method of an object. Objects stay its
/// own.
Ownership ownershipOf(const Parameter& parameter) {
  const bool is_object = !parameter.type.is_array && factsOf(parameter.type.type).form == Form::kObject;
  return parameter.by_reference || is_object ? Ownership::kBorrowed : Ownership::kHandedOver;
}

/// Stores into the plugin's variable as a plugin stores into the host's: what it held before is released.
void storeThrough(Host& host, void* target, const Parameter& parameter, const Value& value) {
  const std::string place = "by reference " + parameter.name;
  const Value old = fromSlot(host, target, parameter.type, Ownership::kBorrowed, place.c_str());
  const Value converted = convertToArgument(host, value, parameter.type);
  const std::uint64_t slot = toSlot(converted, parameter.type);
  if (Counted* const counted = countedOf(old)) {
    host.handles().release(counted->handle(), counted->kind(), place.c_str());
  }
  if (Counted* const counted = countedOf(converted)) {
    counted->addPluginReference();
  }
  std::memcpy(target, &slot, parameter.type.is_array ? sizeof slot : factsOf(parameter.type.type).width);
}

// libffi makes functions at run time since macOS 10.15; on an earlier one there is none to be had.

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

/// Null is let pass.
void freeClosure(ffi_closure* closure) {
  if (closure == nullptr) {
    return;
  }
  if (__builtin_available(macOS 10.15, *)) {
    ffi_closure_free(closure);
  }
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

NativeSignature::NativeSignature(const Declaration& declaration, bool for_object) {
  if (for_object) {
    types_.push_back(&ffi_type_pointer);
  }
  for (const Parameter& parameter : declaration.parameters) {
    types_.push_back(parameter.by_reference ? &ffi_type_pointer : nativeType(parameter.type));
  }
  if (ffi_prep_cif(&interface_, FFI_DEFAULT_ABI, static_cast<unsigned>(types_.size()), nativeResultType(declaration),
                   types_.data()) != FFI_OK) {
    throw std::runtime_error("no native signature for " + declaration.text);
  }
}

CallResult callFunction(Host& host, const Declaration& declaration, NativeSignature& signature, const void* function,
                        const Values& arguments) {
  Frame frame(host, declaration, arguments);
  ResultBuffer buffer{};
  {
    const CurrentHost current(host);
    const AutoreleasePool pool;
    try {
      ffi_call(&signature.interface(), reinterpret_cast<void (*)()>(const_cast<void*>(function)), &buffer,
               frame.pointers());
    } catch (...) {
      frame.reclaim();
      host.takeException();
      throw;
    }
  }
  CallResult result;
  result.by_reference = frame.reclaim();
  result.result = resultOf(host, declaration, buffer);
  if (const std::exception_ptr held = host.takeException()) {
    std::rethrow_exception(held);
  }
  return result;
}

NativeMethod::NativeMethod(Host& host, Declaration declaration, Handler handler)
    : host_(host),
      declaration_(std::move(declaration)),
      handler_(std::move(handler)),
      signature_(declaration_, true),
      closure_(allocateClosure(&address_)) {
  if (closure_ == nullptr || !prepareClosure(closure_, &signature_.interface(), &NativeMethod::enter, this, address_)) {
    throw std::runtime_error("no native entry for " + declaration_.text);
  }
}

NativeMethod::~NativeMethod() { freeClosure(closure_); }

void NativeMethod::enter(ffi_cif* /*interface*/, void* result, void** arguments, void* self) {
  static_cast<NativeMethod*>(self)->run(result, arguments);
}

void NativeMethod::run(void* result, void** arguments) {
  std::uint64_t slot = 0;
  // A plugin is calling: nothing may be thrown through it.
  try {
    const Value value = invoke(arguments);
    if (declaration_.result) {
      slot = toSlot(value, *declaration_.result);
      if (Counted* const counted = countedOf(value)) {
        counted->addPluginReference();
      }
    }
  } catch (...) {
    host_.holdException(std::current_exception());
  }
  if (declaration_.result) {
    std::memcpy(result, &slot, sizeof slot);
  }
}

Value NativeMethod::invoke(void** arguments) {
  void* self = nullptr;
  std::memcpy(&self, arguments[0], sizeof self);
  const std::string place = where(declaration_, "object");
  const Ref<Object> object(host_.handles().find<Object>(self, place.c_str()));

  Values values;
  std::vector<void*> sources;
  for (std::size_t i = 0; i < declaration_.parameters.size(); ++i) {
    const Parameter& parameter = declaration_.parameters[i];
    sources.push_back(arguments[i + 1]);
    if (parameter.by_reference) {
      std::memcpy(&sources.back(), arguments[i + 1], sizeof(void*));
    }
    const std::string name = where(declaration_, "argument " + parameter.name);
    values.push_back(fromSlot(host_, sources.back(), parameter.type, ownershipOf(parameter), name.c_str()));
  }
  if (!object) {
    throw ValueError(place + ": called on no living object");
  }

  const Values before = values;
  const Value result = handler_(*object, values);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (declaration_.parameters[i].by_reference && !(values[i] == before[i])) {
      storeThrough(host_, sources[i], declaration_.parameters[i], values[i]);
    }
  }
  return declaration_.result ? convertToArgument(host_, result, *declaration_.result) : Value();
}

}  // namespace devhost
