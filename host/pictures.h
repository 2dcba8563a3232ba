// Pictures and the memory of their pixels.
//
// Host's thread.
#pragma once

#include "host/handles.h"
#include "host/table.h"

// clang-format off

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

// clang-format on

/// As REALLockPictureDescriptionWithNativeType, deliberately not the entry that other calls of this name reach.
inline host::Word::Value REALLockPictureDescription(REALobjectStruct* picture, REALpictureDescription* description) {
  return REALLockPictureDescriptionWithNativeType(picture, description);
}
