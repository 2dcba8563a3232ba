// What programs draw and show: pictures, graphics contexts and fonts, controls and windows.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

// --- Pictures and the memory of their pixels

//                 member                                     host entry                                result
HOST_MEMBER       (REALBuildPictureFromPictureDescription,   "REALBuildPictureFromPictureDescription", As<REALobjectStruct*>)
HOST_MEMBER       (REALBuildPictureFromBuffer,               "REALBuildPictureFromBuffer",             As<REALobjectStruct*>)
HOST_MEMBER       (REALPictureClearCache,                    "REALPictureClearCache",                  Nothing)
HOST_MEMBER       (REALGetPictureMask,                       "REALGetPictureMask",                     As<REALobjectStruct*>)
HOST_MEMBER       (REALCopyPictureCGImage,                   "REALCopyPictureCGImage",                 As<void*>)
HOST_MEMBER_BESIDE(REALLockPictureDescription,               "REALLockPictureDescription",             TrueIfLowByte, (REALobjectStruct*, REALpictureDescription*))
HOST_EXACT        (REALLockPictureDescriptionWithNativeType, "lockPictureDescription",                 Word,          (REALobjectStruct* picture, REALpictureDescription* description), (picture, description))
HOST_MEMBER       (REALUnlockPictureDescription,             "unlockPictureDescription",               Nothing)
HOST_MEMBER       (REALDrawPicturePrimitive,                 "drawPicturePrimitive",                   Nothing)
HOST_MEMBER       (REALGetPictureGraphics,                   "pluginPictureGraphicsGetter",            As<REALobjectStruct*>)
HOST_MEMBER       (REALNewPicture,                           "newPicture",                             As<REALobjectStruct*>)
HOST_MEMBER       (REALGetPictureType,                       "PluginPictureGetType",                   Word)

// --- Graphics contexts and fonts

//          member                       host entry                      result
HOST_MEMBER(REALGetGraphicsOrigin,      "REALGetGraphicsOrigin",        Word)
HOST_MEMBER(REALSetGraphicsOrigin,      "REALSetGraphicsOrigin",        Nothing)
HOST_MEMBER(REALGraphicsDC,             "REALGraphicsDC",               As<void*>)
HOST_MEMBER(REALGetGraphicsFontStyle,   "REALGetGraphicsFontStyle",     Word)
HOST_MEMBER(REALSetGraphicsStyle,       "REALSetGraphicsStyle",         Nothing)
HOST_MEMBER(REALGetFontEncoding,        "REALGetFontEncoding",          Low32)
HOST_MEMBER(GraphicsDrawLine,           "RuntimeGraphicsDrawLine",      Nothing)
HOST_MEMBER(REALGraphicsDrawString,     "RuntimeGraphicsDrawString",    Nothing)
HOST_MEMBER(REALGraphicsStringWidth,    "RuntimeGraphicsStringWidth",   Word)
HOST_MEMBER(REALGraphicsStringHeight,   "RuntimeGraphicsStringHeight",  Word)
HOST_MEMBER(REALGraphicsTextHeight,     "RuntimeGraphicsTextHeight",    Word)
HOST_MEMBER(REALGraphicsTextAscent,     "RuntimeGraphicsTextAscent",    Word)
HOST_MEMBER(REALDefaultControlFont,     "PluginDefaultControlFont",     As<REALstringStruct*>)
HOST_MEMBER(REALDefaultControlFontSize, "PluginDefaultControlFontSize", Word)
HOST_MEMBER(REALDefaultControlCaption,  "PluginDefaultControlCaption",  As<REALstringStruct*>)

// --- Controls and the host's windows. Three members return the host's truth value as the byte that it is; one reduces it.

//          member                      host entry                   result
HOST_MEMBER(REALGetControlGraphics,    "REALGetControlGraphics",    As<REALobjectStruct*>)
HOST_MEMBER(REALGetControlEnabled,     "REALGetControlEnabled",     LowByteAsIs)
HOST_MEMBER(REALInvalidateControl,     "REALInvalidateControl",     Nothing)
HOST_MEMBER(REALInvalidateControlRect, "REALInvalidateControlRect", Nothing)
HOST_MEMBER(REALGetWindowHandle,       "REALGetWindowHandle",       As<void*>)
HOST_MEMBER(REALGetControlHandle,      "REALGetControlHandle",      As<void*>)
HOST_MEMBER(REALGetControlFocus,       "REALGetControlFocus",       LowByteAsIs)
HOST_MEMBER(REALSetControlFocus,       "REALSetControlFocus",       Nothing)
HOST_MEMBER(REALGetControlParent,      "REALGetControlParent",      As<REALobjectStruct*>)
HOST_MEMBER(REALGetControlName,        "REALGetControlName",        As<REALstringStruct*>)
HOST_MEMBER(REALGetControlBounds,      "GetControlBounds",          Word)
HOST_MEMBER(REALGetControlVisible,     "GetControlVisible",         TrueIfLowByte)
HOST_MEMBER(REALSetControlVisible,     "SetControlVisible",         Nothing)
HOST_MEMBER(REALSetControlEnabled,     "controlEnabledSetter",      Nothing)
HOST_MEMBER(REALGetControlPosition,    "ctlPosGetter",              Word)
HOST_MEMBER(REALSetControlPosition,    "ctlPosSetter",              Nothing)
HOST_MEMBER(REALGetControlWindow,      "getControlWindow",          As<REALobjectStruct*>)
HOST_MEMBER(REALGetTabPanelVisible,    "GetTabPanelVisible",        LowByteAsIs)
HOST_MEMBER(REALMessageBox,            "RuntimeMsgBox",             Nothing)

// clang-format on

/// As REALLockPictureDescriptionWithNativeType, deliberately not the entry that other calls of this name reach.
inline host::Word::Value REALLockPictureDescription(REALobjectStruct* picture, REALpictureDescription* description) {
  return REALLockPictureDescriptionWithNativeType(picture, description);
}
