// Registration: what the host learns about the plugin.
//
// Host's thread, at load. The host may keep the address of a record for as long as the library is loaded. A background
// task's number is 32 bits wide; -1 is none.
#pragma once

#include "host/records.h"
#include "host/table.h"

// clang-format off

//          member                         host entry                        result
HOST_EXACT (REALRegisterModule,           "PluginRegisterModule",           Nothing, (REALmoduleDefinition* module), (module))
HOST_MEMBER(REALRegisterClass,            "PluginRegisterClass",            Word)
HOST_MEMBER(REALRegisterControl,          "PluginRegisterControl",          Word)
HOST_MEMBER(REALRegisterInterface,        "PluginRegisterInterface",        Word)
HOST_MEMBER(REALRegisterStructure,        "PluginRegisterStructure",        Word)
HOST_MEMBER(REALRegisterEnum,             "PluginRegisterEnum",             Word)
HOST_MEMBER(REALRegisterMethod,           "PluginRegisterMethod",           Word)
HOST_MEMBER(REALRegisterClassExtension,   "PluginRegisterClassExtension",   Word)
HOST_MEMBER(REALRegisterBackgroundTask,   "PluginRegisterBackgroundTask",   Low32Or<0xFFFFFFFF>)
HOST_MEMBER(REALUnregisterBackgroundTask, "PluginUnregisterBackgroundTask", Word)

// clang-format on
