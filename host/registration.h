// Registration: what the host learns about the plugin.
//
// Host's thread, at load. The host may keep the address of a record for as long as the library is loaded.
#pragma once

#include "host/records.h"
#include "host/table.h"

// clang-format off

//          member                host entry                result
HOST_EXACT (REALRegisterModule,   "PluginRegisterModule",   Nothing, (REALmoduleDefinition* module), (module))

// clang-format on
