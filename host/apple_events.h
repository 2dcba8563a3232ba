// Apple events.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

//          member                      host entry                   result
HOST_MEMBER(REALBuildAppleEvent,       "REALBuildAppleEvent",       Word)
HOST_MEMBER(REALBuildAEDescList,       "REALBuildAEDescList",       Word)
HOST_MEMBER(REALBuildAEObjSpecifier,   "REALBuildAEObjSpecifier",   Word)
HOST_MEMBER(REALAccessAppleEvent,      "REALAccessAppleEvent",      Word)
HOST_MEMBER(REALAccessAppleEventReply, "REALAccessAppleEventReply", Word)

// clang-format on
