// The host itself: registration with it, and its state.
//
// Host's thread; registration at load. The host may keep the address of a record for as long as the library is loaded.
#pragma once

#include "host/table.h"

// clang-format off

// --- Registration. A background task's number is 32 bits wide; -1 is none.

//          member                         host entry                        result
HOST_EXACT (REALRegisterModule,           "PluginRegisterModule",           Nothing, (REALmoduleDefinition* module), (module))
HOST_MEMBER(REALRegisterClass,            "PluginRegisterClass",            Nothing)
HOST_MEMBER(REALRegisterControl,          "PluginRegisterControl",          Nothing)
HOST_MEMBER(REALRegisterInterface,        "PluginRegisterInterface",        Nothing)
HOST_MEMBER(REALRegisterStructure,        "PluginRegisterStructure",        Nothing)
HOST_MEMBER(REALRegisterEnum,             "PluginRegisterEnum",             Nothing)
HOST_MEMBER(REALRegisterMethod,           "PluginRegisterMethod",           Nothing)
HOST_MEMBER(REALRegisterClassExtension,   "PluginRegisterClassExtension",   Nothing)
HOST_MEMBER(REALRegisterBackgroundTask,   "PluginRegisterBackgroundTask",   Low32Or<0xFFFFFFFF>)
HOST_MEMBER(REALUnregisterBackgroundTask, "PluginUnregisterBackgroundTask", Nothing)

// --- State

//          member             host entry          result
HOST_MEMBER(REALinRuntime,    "REALinRuntime",    TrueIfLowByte)
HOST_MEMBER(REALInDebugMode,  "REALInDebugMode",  TrueIfLowByte)
HOST_EXACT (REALGetRBVersion, "REALGetRBVersion", As<double>, (), ())
HOST_MEMBER(REALYieldToRB,    "REALYieldToRB",    Nothing)

// clang-format on
