// Classes and new objects of them. The argument lists are this host's own choice, but for that of "CreateInstance".
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

/// Null for null, and for what is no reference to a class, which is noted as a fault.
const std::string* findClass(Host& host, const void* reference, const char* where) {
  if (reference == nullptr) {
    return nullptr;
  }
  const std::string* const name = host.classes().nameOf(reference);
  if (name == nullptr) {
    host.handles().addFault(std::string(where) + ": not a reference to a class");
  }
  return name;
}

void* classReference(const char* name) {
  return guarded<void*>("pluginObjectType", nullptr,
                        [&](Host& host) { return name == nullptr ? nullptr : host.classes().reference(name); });
}

std::uint64_t objectIsA(void* object, const void* reference) {
  return guarded<std::uint64_t>("RuntimeObjectIsa", 0, [&](Host& host) -> std::uint64_t {
    const Object* const found = host.handles().find<Object>(object, "RuntimeObjectIsa");
    const std::string* const wanted = findClass(host, reference, "RuntimeObjectIsa");
    return found != nullptr && wanted != nullptr && isClass(found->className(), *wanted) ? 1 : 0;
  });
}

void* newInstance(const void* reference) {
  return guarded<void*>("CreateInstance", nullptr, [&](Host& host) -> void* {
    const std::string* const name = findClass(host, reference, "CreateInstance");
    return name == nullptr ? nullptr : give(host.makeObject(*name));
  });
}

void* newInstanceLike(void* object) {
  return guarded<void*>("PluginNewInstance", nullptr, [&](Host& host) -> void* {
    const Object* const found = host.handles().find<Object>(object, "PluginNewInstance");
    return found == nullptr ? nullptr : give(host.makeObject(found->className()));
  });
}

void* newInstanceOfClass(const char* name) {
  return guarded<void*>("PluginNewInstanceOfClass", nullptr, [&](Host& host) -> void* {
    return name == nullptr || *name == '\0' ? nullptr : give(host.makeObject(name));
  });
}

const Entry kEntries[] = {
    entry("pluginObjectType", classReference),              // (const char* class) -> class reference, borrowed
    entry("RuntimeObjectIsa", objectIsA),                   // (object, class reference) -> bool
    entry("CreateInstance", newInstance),                   // (class reference) -> new object
    entry("PluginNewInstance", newInstanceLike),            // (object) -> new object of the same class
    entry("PluginNewInstanceOfClass", newInstanceOfClass),  // (const char* class) -> new object
};

}  // namespace

void addClassEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
