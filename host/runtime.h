// The host itself: registration with it, and its state.
//
// Host's thread; registration at load. The host may keep the address of a record for as long as the library is loaded.
#pragma once

#include "host/table.h"

// clang-format off

// --- Registration. A background task's number is 32 bits wide; -1 is none.

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

// --- State

//          member             host entry          result
HOST_MEMBER(REALinRuntime,    "REALinRuntime",    TrueIfLowByte)
HOST_MEMBER(REALInDebugMode,  "REALInDebugMode",  TrueIfLowByte)
HOST_EXACT (REALGetRBVersion, "REALGetRBVersion", As<double>, (), ())
HOST_MEMBER(REALYieldToRB,    "REALYieldToRB",    Word)

// clang-format on
