// Sockets.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

//          member                         host entry                  result
HOST_MEMBER(REALMarkSocketUsage,          "PluginMarkSocketUsage",    Word)
HOST_MEMBER(REALSocketConnect,            "socketDirectConnect",      Word)
HOST_MEMBER(REALSocketClose,              "socketClose",              Word)
HOST_MEMBER(REALSocketReadAll,            "pluginSocketReadAll",      Word)
HOST_MEMBER(REALSocketRead,               "pluginSocketRead",         Word)
HOST_MEMBER(REALSocketWrite,              "SocketWrite",              Word)
HOST_MEMBER(REALSocketLastErrorCode,      "socketLastErrorCode",      Word)
HOST_MEMBER(REALSocketLookahead,          "pluginSocketLookahead",    Word)
HOST_MEMBER(REALSocketLocalAddressGetter, "socketLocalAddressGetter", Word)
HOST_MEMBER(REALSocketPoll,               "socketPoll",               Word)
HOST_MEMBER(REALSocketGetEvents,          "socketGetEvents",          Word)
HOST_MEMBER(REALSocketListen,             "pluginSocketListen",       Word)

// clang-format on
