// Data outside the program: files and memory blocks, databases, sockets, Apple events.
//
// Host's thread. The system's file records are passed on by address and never read.
#pragma once

#include "host/table.h"

// clang-format off

// --- Files, folders and memory blocks

//          member                          host entry                       result
HOST_MEMBER(REALFSRefFromFolderItem,       "REALFSRefFromFolderItem",       Word)
HOST_EXACT (REALFolderItemFromParentFSRef, "REALFolderItemFromParentFSRef", Word, (const FSRef* parent, const HFSUniStr255* name), (parent, name))
HOST_MEMBER(REALpathFromFolderItem,        "REALpathFromFolderItem",        Word)
HOST_MEMBER(REALGetProjectFolder,          "REALGetProjectFolder",          Word)
HOST_MEMBER(REALNewMemoryBlock,            "newMemoryBlock",                Word)
HOST_MEMBER(REALMemoryBlockGetPtr,         "memoryBlockGetPtr",             Word)
HOST_MEMBER(REALMemoryBlockGetSize,        "memoryBlockGetSize",            Word)
HOST_MEMBER(REALPtrToMemoryBlock,          "PtrToMemoryBlock",              Word)

// --- Databases and data sources

//          member                            host entry                        result
HOST_MEMBER(REALdbCursorFromDBCursor,        "REALdbCursorFromDBCursor",       Word)
HOST_MEMBER(REALdbDatabaseFromDBDatabase,    "REALdbDatabaseFromDBDatabase",   Word)
HOST_MEMBER(REALGetDBHost,                   "REALGetDBHost",                  Word)
HOST_MEMBER(REALGetDBDatabaseName,           "REALGetDBDatabaseName",          Word)
HOST_MEMBER(REALGetDBPassword,               "REALGetDBPassword",              Word)
HOST_MEMBER(REALGetDBUserName,               "REALGetDBUserName",              Word)
HOST_MEMBER(REALGetDBFromREALdbDatabase,     "REALGetDBFromREALdbDatabase",    Word)
HOST_MEMBER(REALConstructDBDatabase,         "REALConstructDBDatabase",        Word)
HOST_MEMBER(REALGetCursorFromREALdbCursor,   "REALGetCursorFromREALdbCursor",  Word)
HOST_MEMBER(REALSetDBIsConnected,            "REALSetDBIsConnected",           Word)
HOST_MEMBER(REALDBConnectionDialogCreate,    "REALDBConnectionDialogCreate",   Word)
HOST_MEMBER(REALDBConnectionDialogAddField,  "REALDBConnectionDialogAddField", Word)
HOST_MEMBER(REALDBConnectionDialogShow,      "REALDBConnectionDialogShow",     Word)
HOST_MEMBER(REALDBConnectionDialogDelete,    "REALDBConnectionDialogDelete",   Word)
HOST_MEMBER(REALRegisterDataSourceInterface, "RegisterDataSourceInterface",    Word)
HOST_MEMBER(REALRegisterDataSource,          "RegisterDataSource",             Word)
HOST_MEMBER(REALRegisterDatabaseConnection,  "RegisterDatabaseConnection",     Word)
HOST_MEMBER(REALDesignAddDataSource,         "DesignAddDataSource",            Word)
HOST_MEMBER(REALRegisterDBEngine,            "PluginRegisterDBEngine",         Word)
HOST_MEMBER(REALRegisterDBTable,             "PluginRegisterDBTable",          Word)
HOST_MEMBER(REALRegisterDBCursor,            "PluginRegisterDBCursor",         Word)

// --- Sockets

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

// --- Apple events

//          member                      host entry                   result
HOST_MEMBER(REALBuildAppleEvent,       "REALBuildAppleEvent",       Word)
HOST_MEMBER(REALBuildAEDescList,       "REALBuildAEDescList",       Word)
HOST_MEMBER(REALBuildAEObjSpecifier,   "REALBuildAEObjSpecifier",   Word)
HOST_MEMBER(REALAccessAppleEvent,      "REALAccessAppleEvent",      Word)
HOST_MEMBER(REALAccessAppleEventReply, "REALAccessAppleEventReply", Word)

// clang-format on

inline host::Word::Value REALFolderItemFromParentFSRef(const FSRef& parent, const HFSUniStr255& name) {
  return REALFolderItemFromParentFSRef(&parent, &name);
}
