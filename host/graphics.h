// Graphics contexts and fonts.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

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

// clang-format on
