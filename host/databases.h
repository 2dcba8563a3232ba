// Databases and data sources.
//
// Host's thread.
#pragma once

#include "host/table.h"

// clang-format off

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

// clang-format on
