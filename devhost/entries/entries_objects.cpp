// Host objects, and methods of objects and of none.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

void lockObject(void* object) {
  if (auto* const found = Host::current().handles().find<Object>(object, "REALLockObject")) {
    found->addPluginReference();
  }
}

void unlockObject(void* object) {
  Host::current().handles().release(object, Counted::Kind::kObject, "REALUnlockObject");
}

/// Null for no object, for an object without such a method, and for a declaration that cannot be parsed.
void* loadObjectMethod(void* object, const char* declaration) {
  return guarded<void*>("REALLoadObjectMethod", nullptr, [&](Host& host) -> void* {
    host.addMethodLookup(object, declaration);
    auto* const found = host.handles().find<Object>(object, "REALLoadObjectMethod");
    return found == nullptr || declaration == nullptr ? nullptr : found->methodAddress(parseDeclaration(declaration));
  });
}

void* loadGlobalMethod(const void* module, const char* declaration) {
  return Host::current().globalMethods().load(module, declaration);
}

const Entry kEntries[] = {
    entry("REALLockObject", lockObject),              // (object)
    entry("REALUnlockObject", unlockObject),          // (object)
    entry("REALLoadObjectMethod", loadObjectMethod),  // (object, const char* declaration) -> address
    entry("REALLoadGlobalMethod", loadGlobalMethod),  // (module, const char* declaration) -> address
};

}  // namespace

void addObjectEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
