// Where the host enters: the one function that it calls when it has loaded the library.
#include "base/export.h"
#include "host/call.h"
#include "host/runtime.h"
#include "plugin/module.h"

namespace {

/// Registers the module. The host's answer, if it gives one, is not looked at.
void PluginEntry() { REALRegisterModule(&DisplayModuleDefinition); }

}  // namespace

/// Called once by the host, on its own thread. Keeps the resolver, announces the version of the host's interface, and
/// then registers the module. A host without "RegisterPluginVersion" is deliberately not supported, and not tested for.
extern "C" OSTREVIN_API void REALPluginMain(REALresolver resolver) {
  gResolver = resolver;
  host::invoke<void>(CallResolver("RegisterPluginVersion"), static_cast<int>(kHostInterfaceVersion));
  PluginEntry();
}
