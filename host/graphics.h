// What programs draw and show: pictures, graphics contexts and fonts, controls and windows.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

// --- Pictures and the memory of their pixels

//                 member                                     host entry                                result
HOST_MEMBER       (REALBuildPictureFromPictureDescription,   "REALBuildPictureFromPictureDescription", Word)
HOST_MEMBER       (REALBuildPictureFromBuffer,               "REALBuildPictureFromBuffer",             Word)
HOST_MEMBER       (REALPictureClearCache,                    "REALPictureClearCache",                  Word)
HOST_MEMBER       (REALGetPictureMask,                       "REALGetPictureMask",                     Word)
HOST_MEMBER       (REALCopyPictureCGImage,                   "REALCopyPictureCGImage",                 Word)
HOST_MEMBER_BESIDE(REALLockPictureDescription,               "REALLockPictureDescription",             TrueIfLowByte, (REALobjectStruct*, REALpictureDescription*))
HOST_MEMBER       (REALLockPictureDescriptionWithNativeType, "lockPictureDescription",                 Word)
HOST_MEMBER       (REALUnlockPictureDescription,             "unlockPictureDescription",               Word)
HOST_MEMBER       (REALDrawPicturePrimitive,                 "drawPicturePrimitive",                   Word)
HOST_MEMBER       (REALGetPictureGraphics,                   "pluginPictureGraphicsGetter",            Word)
HOST_MEMBER       (REALNewPicture,                           "newPicture",                             Word)
HOST_MEMBER       (REALGetPictureType,                       "PluginPictureGetType",                   Word)

// --- Graphics contexts and fonts

//          member                       host entry                      result
HOST_MEMBER(REALGetGraphicsOrigin,      "REALGetGraphicsOrigin",        Word)
HOST_MEMBER(REALSetGraphicsOrigin,      "REALSetGraphicsOrigin",        Word)
HOST_MEMBER(REALGraphicsDC,             "REALGraphicsDC",               Word)
HOST_MEMBER(REALGetGraphicsFontStyle,   "REALGetGraphicsFontStyle",     Word)
HOST_MEMBER(REALSetGraphicsStyle,       "REALSetGraphicsStyle",         Word)
HOST_MEMBER(REALGetFontEncoding,        "REALGetFontEncoding",          Low32)
HOST_MEMBER(GraphicsDrawLine,           "RuntimeGraphicsDrawLine",      Word)
HOST_MEMBER(REALGraphicsDrawString,     "RuntimeGraphicsDrawString",    Word)
HOST_MEMBER(REALGraphicsStringWidth,    "RuntimeGraphicsStringWidth",   Word)
HOST_MEMBER(REALGraphicsStringHeight,   "RuntimeGraphicsStringHeight",  Word)
HOST_MEMBER(REALGraphicsTextHeight,     "RuntimeGraphicsTextHeight",    Word)
HOST_MEMBER(REALGraphicsTextAscent,     "RuntimeGraphicsTextAscent",    Word)
HOST_MEMBER(REALDefaultControlFont,     "PluginDefaultControlFont",     Word)
HOST_MEMBER(REALDefaultControlFontSize, "PluginDefaultControlFontSize", Word)
HOST_MEMBER(REALDefaultControlCaption,  "PluginDefaultControlCaption",  Word)

// --- Controls and the host's windows. Three members return the host's truth value as the byte that it is; one reduces it.

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

/// As REALLockPictureDescriptionWithNativeType, deliberately not the entry that other calls of this name reach.
inline host::Word::Value REALLockPictureDescription(REALobjectStruct* picture, REALpictureDescription* description) {
  return REALLockPictureDescriptionWithNativeType(picture, description);
}
