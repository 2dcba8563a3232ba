// Controls and the host's windows.
//
// Host's thread. Three members hand the host's truth value on as the byte it is; one reduces it.
#pragma once

#include "host/table.h"

// clang-format off

//          member                      host entry                   result
HOST_MEMBER(REALGetControlGraphics,    "REALGetControlGraphics",    Word)
HOST_MEMBER(REALGetControlEnabled,     "REALGetControlEnabled",     LowByteAsIs)
HOST_MEMBER(REALInvalidateControl,     "REALInvalidateControl",     Word)
HOST_MEMBER(REALInvalidateControlRect, "REALInvalidateControlRect", Word)
HOST_MEMBER(REALGetWindowHandle,       "REALGetWindowHandle",       Word)
HOST_MEMBER(REALGetControlHandle,      "REALGetControlHandle",      Word)
HOST_MEMBER(REALGetControlFocus,       "REALGetControlFocus",       LowByteAsIs)
HOST_MEMBER(REALSetControlFocus,       "REALSetControlFocus",       Word)
HOST_MEMBER(REALGetControlParent,      "REALGetControlParent",      Word)
HOST_MEMBER(REALGetControlName,        "REALGetControlName",        Word)
HOST_MEMBER(REALGetControlBounds,      "GetControlBounds",          Word)
HOST_MEMBER(REALGetControlVisible,     "GetControlVisible",         TrueIfLowByte)
HOST_MEMBER(REALSetControlVisible,     "SetControlVisible",         Word)
HOST_MEMBER(REALSetControlEnabled,     "controlEnabledSetter",      Word)
HOST_MEMBER(REALGetControlPosition,    "ctlPosGetter",              Word)
HOST_MEMBER(REALSetControlPosition,    "ctlPosSetter",              Word)
HOST_MEMBER(REALGetControlWindow,      "getControlWindow",          Word)
HOST_MEMBER(REALGetTabPanelVisible,    "GetTabPanelVisible",        LowByteAsIs)
HOST_MEMBER(REALMessageBox,            "RuntimeMsgBox",             Word)

// clang-format on
