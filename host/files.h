// Data outside the program: files and memory blocks, databases, sockets, Apple events.
//
// Host's thread. The system's file records are passed on by address and never read.
#pragma once

#include "host/table.h"

// clang-format off

// --- Files, folders and memory blocks

//          member                          host entry                       result
HOST_MEMBER(REALFSRefFromFolderItem,       "REALFSRefFromFolderItem",       Word)
HOST_EXACT (REALFolderItemFromParentFSRef, "REALFolderItemFromParentFSRef", As<REALobjectStruct*>, (const FSRef* parent, const HFSUniStr255* name), (parent, name))
HOST_MEMBER(REALpathFromFolderItem,        "REALpathFromFolderItem",        As<REALstringStruct*>)
HOST_MEMBER(REALGetProjectFolder,          "REALGetProjectFolder",          Word)
HOST_MEMBER(REALNewMemoryBlock,            "newMemoryBlock",                As<REALobjectStruct*>)
HOST_MEMBER(REALMemoryBlockGetPtr,         "memoryBlockGetPtr",             As<void*>)
HOST_MEMBER(REALMemoryBlockGetSize,        "memoryBlockGetSize",            Word)
HOST_MEMBER(REALPtrToMemoryBlock,          "PtrToMemoryBlock",              As<REALobjectStruct*>)

// --- Databases and data sources

//          member                            host entry                        result
HOST_MEMBER(REALdbCursorFromDBCursor,        "REALdbCursorFromDBCursor",       As<REALobjectStruct*>)
HOST_MEMBER(REALdbDatabaseFromDBDatabase,    "REALdbDatabaseFromDBDatabase",   As<REALobjectStruct*>)
HOST_MEMBER(REALGetDBHost,                   "REALGetDBHost",                  As<REALstringStruct*>)
HOST_MEMBER(REALGetDBDatabaseName,           "REALGetDBDatabaseName",          As<REALstringStruct*>)
HOST_MEMBER(REALGetDBPassword,               "REALGetDBPassword",              As<REALstringStruct*>)
HOST_MEMBER(REALGetDBUserName,               "REALGetDBUserName",              As<REALstringStruct*>)
HOST_MEMBER(REALGetDBFromREALdbDatabase,     "REALGetDBFromREALdbDatabase",    As<void*>)
HOST_MEMBER(REALConstructDBDatabase,         "REALConstructDBDatabase",        As<REALobjectStruct*>)
HOST_MEMBER(REALGetCursorFromREALdbCursor,   "REALGetCursorFromREALdbCursor",  As<void*>)
HOST_MEMBER(REALSetDBIsConnected,            "REALSetDBIsConnected",           Nothing)
HOST_MEMBER(REALDBConnectionDialogCreate,    "REALDBConnectionDialogCreate",   As<void*>)
HOST_MEMBER(REALDBConnectionDialogAddField,  "REALDBConnectionDialogAddField", Nothing)
HOST_MEMBER(REALDBConnectionDialogShow,      "REALDBConnectionDialogShow",     Word)
HOST_MEMBER(REALDBConnectionDialogDelete,    "REALDBConnectionDialogDelete",   Nothing)
HOST_MEMBER(REALRegisterDataSourceInterface, "RegisterDataSourceInterface",    Nothing)
HOST_MEMBER(REALRegisterDataSource,          "RegisterDataSource",             Nothing)
HOST_MEMBER(REALRegisterDatabaseConnection,  "RegisterDatabaseConnection",     Nothing)
HOST_MEMBER(REALDesignAddDataSource,         "DesignAddDataSource",            Word)
HOST_MEMBER(REALRegisterDBEngine,            "PluginRegisterDBEngine",         Nothing)
HOST_MEMBER(REALRegisterDBTable,             "PluginRegisterDBTable",          Nothing)
HOST_MEMBER(REALRegisterDBCursor,            "PluginRegisterDBCursor",         Nothing)

// --- Sockets

//          member                         host entry                  result
HOST_MEMBER(REALMarkSocketUsage,          "PluginMarkSocketUsage",    Nothing)
HOST_MEMBER(REALSocketConnect,            "socketDirectConnect",      Word)
HOST_MEMBER(REALSocketClose,              "socketClose",              Nothing)
HOST_MEMBER(REALSocketReadAll,            "pluginSocketReadAll",      As<REALstringStruct*>)
HOST_MEMBER(REALSocketRead,               "pluginSocketRead",         As<REALstringStruct*>)
HOST_MEMBER(REALSocketWrite,              "SocketWrite",              Word)
HOST_MEMBER(REALSocketLastErrorCode,      "socketLastErrorCode",      Word)
HOST_MEMBER(REALSocketLookahead,          "pluginSocketLookahead",    As<REALstringStruct*>)
HOST_MEMBER(REALSocketLocalAddressGetter, "socketLocalAddressGetter", As<REALstringStruct*>)
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

inline REALobjectStruct* REALFolderItemFromParentFSRef(const FSRef& parent, const HFSUniStr255& name) {
  return REALFolderItemFromParentFSRef(&parent, &name);
}
