// The state of the host itself.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

//          member             host entry          result
HOST_MEMBER(REALinRuntime,    "REALinRuntime",    TrueIfLowByte)
HOST_MEMBER(REALInDebugMode,  "REALInDebugMode",  TrueIfLowByte)
HOST_EXACT (REALGetRBVersion, "REALGetRBVersion", As<double>, (), ())
HOST_MEMBER(REALYieldToRB,    "REALYieldToRB",    Word)

// clang-format on
