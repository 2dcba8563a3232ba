#include "devhost/entries/host.h"

#include "devhost/language/declaration.h"

namespace devhost {
namespace {

/// The code of the element type String in RuntimeArrayCreateSingleDimBoundedArray.
constexpr std::uint32_t kStringElements = 3;
/// A larger upper bound is a mistake of the plugin.
constexpr std::int64_t kMaxNewElements = 100'000'000;

struct Entry {
  const char* name;
  void* function;
};

template <typename Result, typename... Arguments>
Entry entry(const char* name, Result (*function)(Arguments...)) {
  return {name, reinterpret_cast<void*>(function)};
}

// Entries act for the current runtime and never throw: a plugin's mistake is recorded as a fault.

// --- Registration

void registerPluginVersion(int version) { Runtime::current().registration().announced_versions.push_back(version); }

void registerModule(const void* record) { Runtime::current().registration().module_records.push_back(record); }

// --- Strings

void* buildString(const char* bytes, int length, std::uint32_t encoding) {
  if (length < 0 || (bytes == nullptr && length > 0)) {
    Runtime::current().handles().addFault("building a string: " + std::to_string(length) + " bytes at " +
                                          (bytes == nullptr ? "null" : "an address"));
    return nullptr;
  }
  std::string copy = length == 0 ? std::string() : std::string(bytes, static_cast<std::size_t>(length));
  Runtime& runtime = Runtime::current();
  return runtime.handles().give(runtime.makeString(std::move(copy), encoding));
}

void unlockString(void* string) { Runtime::current().handles().release<String>(string, "REALUnlockString"); }

const char* cString(void* string) {
  const Ref<String> found = Runtime::current().handles().find<String>(string, "StringGetCString");
  return found == nullptr ? nullptr : found->bytes().c_str();
}

std::int64_t lenB(void* string) {
  const Ref<String> found = Runtime::current().handles().find<String>(string, "LenB");
  return found == nullptr ? 0 : static_cast<std::int64_t>(found->bytes().size());
}

// --- Arrays

void* createArray(std::uint32_t element_type, std::int64_t upper_bound) {
  Runtime& runtime = Runtime::current();
  if (element_type != kStringElements || upper_bound < -1 || upper_bound >= kMaxNewElements) {
    runtime.handles().addFault("creating an array: element type " + std::to_string(element_type) + ", upper bound " +
                               std::to_string(upper_bound));
    return nullptr;
  }
  std::vector<Ref<String>> elements(static_cast<std::size_t>(upper_bound + 1), runtime.makeString(""));
  return runtime.handles().give(runtime.makeArray(std::move(elements)));
}

/// The array takes over the plugin's reference to the string.
void insertString(void* array, std::int64_t index, void* string) {
  Handles& handles = Runtime::current().handles();
  const Ref<Array> found = handles.find<Array>(array, "inserting an element");
  const Ref<String> element = handles.take<String>(string, "inserting an element");
  if (found != nullptr && !found->insert(index, element)) {
    handles.addFault("inserting an element: index " + std::to_string(index) + " is outside the " + found->describe());
  }
}

void* stringInsertion(void* array) {
  const Ref<Array> found = Runtime::current().handles().find<Array>(array, "PluginStringArrayInsertProc");
  return found == nullptr ? nullptr : reinterpret_cast<void*>(&insertString);
}

// --- Methods

/// Null for no object, for an object without such a method, and for a declaration that cannot be parsed.
void* loadObjectMethod(void* object, const char* declaration) {
  Runtime& runtime = Runtime::current();
  runtime.addMethodLookup(object, declaration);
  const Ref<Object> found = runtime.handles().find<Object>(object, "REALLoadObjectMethod");
  try {
    return found == nullptr || declaration == nullptr ? nullptr
                                                      : found->method(parseDeclaration(declaration).signature());
  } catch (const DeclarationError& error) {
    runtime.handles().addFault(std::string("REALLoadObjectMethod: ") + error.what());
    return nullptr;
  }
}

void* loadGlobalMethod(const void* module, const char* declaration) {
  return Runtime::current().globalMethods().load(module, declaration);
}

const Entry kEntries[] = {
    entry("RegisterPluginVersion", registerPluginVersion),  // (int version)
    entry("PluginRegisterModule", registerModule),          // (module record)
    entry("REALBuildStringWithEncoding", buildString),  // (const char* bytes, int length, uint32 encoding) -> string
    entry("REALUnlockString", unlockString),            // (string)
    entry("StringGetCString", cString),                 // (string) -> const char*, borrowed
    entry("RuntimeArrayCreateSingleDimBoundedArray", createArray),  // (uint32 element type, int64 upper bound) -> array
    entry("PluginStringArrayInsertProc", stringInsertion),          // (array) -> (array, int64 index, string)
    entry("REALLoadObjectMethod", loadObjectMethod),                // (object, const char* declaration) -> address
    entry("REALLoadGlobalMethod", loadGlobalMethod),                // (module, const char* declaration) -> address
};

}  // namespace

Host::Host() {
  for (const Entry& entry : kEntries) {
    entries().set(entry.name, entry.function);
  }
  globalMethods().set("LenB( s as string ) as integer", lenB);
}

}  // namespace devhost
