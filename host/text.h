// Text values.
//
// Host's thread. A text that is built belongs to the caller, who gives it back with REALUnlockText.
#pragma once

#include "host/handles.h"
#include "host/table.h"

// clang-format off

//           member                 host entry                  result          value
HOST_MEMBER (REALLockText,          "PluginLockText",           Word)
HOST_MEMBER (REALUnlockText,        "PluginUnlockText",         Word)
HOST_MEMBER (REALBuildText,         "PluginBuildText",          Word)
HOST_MEMBER (REALCompareText,       "PluginCompareText",        Word)
HOST_MEMBER (REALConcatenateText,   "PluginConcatenateText",    Word)
HOST_MEMBER (REALGetTextData,       "PluginGetTextData",        Word)
HOST_MEMBER (REALDisposeTextData,   "PluginDisposeTextData",    Word)
HOST_MEMBER (REALCopyTextCFString,  "PluginCopyTextCFString",   Word)
HOST_VARIANT(REALNewVariantText,    "PluginNewVariantText",                     const RuntimeText*)
HOST_GETTER (REALGetPropValueText,  "PluginGetPropValueText",   TrueIfLowByte,  const RuntimeText*)
HOST_SETTER (REALSetPropValueText,  "PluginSetPropValueText",   TrueIfLowByte,  const RuntimeText*)

// clang-format on
