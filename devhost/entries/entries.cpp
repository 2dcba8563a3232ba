#include "devhost/entries/entries.h"

#include <exception>

#include "devhost/entries/entry_table.h"
#include "devhost/runtime/host.h"

namespace devhost {
namespace {

/// The code of the element type String in RuntimeArrayCreateSingleDimBoundedArray.
constexpr std::uint32_t kStringElements = 3;
/// A larger upper bound is a mistake of the plugin.
constexpr std::int64_t kMaxNewElements = 100'000'000;

/// Gives the plugin a reference, and the handle; null for nil.
template <typename T>
void* give(const Ref<T>& counted) {
  if (!counted) {
    return nullptr;
  }
  counted->addPluginReference();
  return counted.handle();
}

// --- Registration

void registerPluginVersion(int version) { Host::current().registration().announced_versions.push_back(version); }

void registerModule(const void* record) { Host::current().registration().module_records.push_back(record); }

// --- Strings

void* buildString(const char* bytes, int length, std::uint32_t encoding) {
  if (length < 0 || (bytes == nullptr && length > 0)) {
    Host::current().handles().addFault("building a string: " + std::to_string(length) + " bytes at " +
                                       (bytes == nullptr ? "null" : "an address"));
    return nullptr;
  }
  std::string copy = length == 0 ? std::string() : std::string(bytes, static_cast<std::size_t>(length));
  return give(Host::current().makeString(std::move(copy), encoding));
}

void unlockString(void* string) {
  Host::current().handles().release(string, Counted::Kind::kString, "REALUnlockString");
}

const char* cString(void* string) {
  const String* const found = Host::current().handles().find<String>(string, "StringGetCString");
  return found == nullptr ? nullptr : found->bytes().c_str();
}

std::int64_t lenB(void* string) {
  const String* const found = Host::current().handles().find<String>(string, "LenB");
  return found == nullptr ? 0 : static_cast<std::int64_t>(found->bytes().size());
}

// --- Arrays

void* createArray(std::uint32_t element_type, std::int64_t upper_bound) {
  Host& host = Host::current();
  if (element_type != kStringElements || upper_bound < -1 || upper_bound >= kMaxNewElements) {
    host.handles().addFault("creating an array: element type " + std::to_string(element_type) + ", upper bound " +
                            std::to_string(upper_bound));
    return nullptr;
  }
  return give(host.makeArray(Type::kString, Values(static_cast<std::size_t>(upper_bound + 1), host.makeString(""))));
}

/// The array takes over the plugin's reference to the string.
void insertString(void* array, std::int64_t index, void* string) {
  Handles& handles = Host::current().handles();
  auto* const found = handles.find<Array>(array, "inserting an element");
  const Ref<String> element = handles.take<String>(string, "inserting an element");
  if (found != nullptr && !found->insert(index, element)) {
    handles.addFault("inserting an element: index " + std::to_string(index) + " is outside the " + found->describe());
  }
}

void* stringInsertion(void* array) {
  const Array* const found = Host::current().handles().find<Array>(array, "PluginStringArrayInsertProc");
  return found == nullptr ? nullptr : reinterpret_cast<void*>(&insertString);
}

// --- Methods

/// Null for no object, for an object without such a method, and for a declaration that cannot be parsed.
void* loadObjectMethod(void* object, const char* declaration) {
  Host& host = Host::current();
  host.addMethodLookup(object, declaration);
  auto* const found = host.handles().find<Object>(object, "REALLoadObjectMethod");
  try {
    return found == nullptr || declaration == nullptr ? nullptr : found->methodAddress(parseDeclaration(declaration));
  } catch (const DeclarationError& error) {
    host.handles().addFault(std::string("REALLoadObjectMethod: ") + error.what());
    return nullptr;
  }
}

void* loadGlobalMethod(const void* module, const char* declaration) {
  return Host::current().globalMethods().load(module, declaration);
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

void addEntries(Host& host) {
  for (const Entry& entry : kEntries) {
    host.entries().set(entry.name, entry.function);
  }
  host.globalMethods().set("LenB( s as string ) as integer", lenB);
}

}  // namespace devhost
