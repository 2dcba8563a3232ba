// The library's entry, what it registers, and what the library exports besides the facade and the services: for the
// plugin and its tests. A host finds the entry by its name; C++ programs use plugin/display.h.
//
// Host's thread.
#pragma once

#include "base/interface.h"
#include "host/call.h"
#include "host/records.h"

extern "C" {

/// Called once by the host. Stores the resolver, announces the version of the host's interface, and then registers the
/// module. A host without "RegisterPluginVersion" is deliberately not supported nor tested for.
OSTREVIN_API void REALPluginMain(REALresolver resolver);

// For tools that read the version off the library.
OSTREVIN_API extern const double OstrevinVersionNumber;
OSTREVIN_API extern const char OstrevinVersionString[];

}  // extern "C"

/// Registers the module. The host's result is not examined.
void PluginEntry();

/// The module, and its methods in the order in which the host receives them.
extern REALmoduleDefinition DisplayModuleDefinition;
extern REALmethodDefinition DisplayModuleMethods[15];

/// The object whose DisplayProfileFound method the listings call: the last one that the host program set. Borrowed.
extern REALobjectStruct* gHostObj;
