#include "devhost/runtime/runtime.h"

#include "devhost/language/declaration.h"

namespace devhost {
namespace {

Runtime* current_runtime = nullptr;

extern "C" void* resolveEntry(const char* name) { return Runtime::current().entries().resolve(name); }

}  // namespace

void* EntryTable::find(std::string_view name) const {
  const auto found = functions_.find(std::string(name));
  return found == functions_.end() ? nullptr : found->second;
}

void* EntryTable::resolve(const char* name) {
  lookups_.emplace_back(name == nullptr ? "(null)" : name);
  return name == nullptr ? nullptr : find(name);
}

void GlobalMethods::set(std::string_view declaration, void* function) {
  functions_[parseDeclaration(declaration).signature()] = function;
}

void GlobalMethods::remove(std::string_view declaration) {
  functions_.erase(parseDeclaration(declaration).signature());
}

void* GlobalMethods::load(const void* module, const char* declaration) {
  lookups_.push_back({module, declaration == nullptr ? "" : declaration});
  // A plugin is calling: nothing may be thrown through it.
  try {
    const auto found = functions_.find(parseDeclaration(lookups_.back().declaration).signature());
    return found == functions_.end() ? nullptr : found->second;
  } catch (const DeclarationError&) {
    return nullptr;
  }
}

Runtime::Runtime() : previous_(std::exchange(current_runtime, this)) {}

Runtime::~Runtime() {
  handles_->dropAllPluginReferences();
  if (current_runtime == this) {
    current_runtime = previous_;
  }
}

Runtime& Runtime::current() { return *current_runtime; }

Resolver Runtime::resolver() { return &resolveEntry; }

Ref<String> Runtime::makeString(std::string bytes, std::uint32_t encoding) {
  return std::make_shared<String>(handles_, std::move(bytes), encoding);
}

Ref<Array> Runtime::makeArray(std::vector<Ref<String>> elements) {
  return std::make_shared<Array>(handles_, std::move(elements));
}

Ref<Object> Runtime::makeObject(std::string class_name) {
  return std::make_shared<Object>(handles_, std::move(class_name));
}

void Runtime::addMethodLookup(const void* object, const char* declaration) {
  method_lookups_.push_back({object, declaration == nullptr ? "" : declaration});
}

void Runtime::clearRecords() {
  entries_.clearLookups();
  global_methods_.clearLookups();
  method_lookups_.clear();
  handles_->clearFaults();
  registration_ = {};
}

void Runtime::holdException(std::exception_ptr exception) {
  if (!held_exception_) {
    held_exception_ = std::move(exception);
  }
}

CurrentRuntime::CurrentRuntime(Runtime& runtime) : previous_(std::exchange(current_runtime, &runtime)) {}

CurrentRuntime::~CurrentRuntime() { current_runtime = previous_; }

}  // namespace devhost
