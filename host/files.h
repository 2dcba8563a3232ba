// Files, folders and memory blocks.
//
// Host's thread. The system's file records are passed on by address and never looked into.
#pragma once

#include "host/handles.h"
#include "host/table.h"

// clang-format off

//          member                          host entry                       result
HOST_MEMBER(REALFSRefFromFolderItem,       "REALFSRefFromFolderItem",       Word)
HOST_EXACT (REALFolderItemFromParentFSRef, "REALFolderItemFromParentFSRef", Word, (const FSRef* parent, const HFSUniStr255* name), (parent, name))
HOST_MEMBER(REALpathFromFolderItem,        "REALpathFromFolderItem",        Word)
HOST_MEMBER(REALGetProjectFolder,          "REALGetProjectFolder",          Word)
HOST_MEMBER(REALNewMemoryBlock,            "newMemoryBlock",                Word)
HOST_MEMBER(REALMemoryBlockGetPtr,         "memoryBlockGetPtr",             Word)
HOST_MEMBER(REALMemoryBlockGetSize,        "memoryBlockGetSize",            Word)
HOST_MEMBER(REALPtrToMemoryBlock,          "PtrToMemoryBlock",              Word)

// clang-format on

inline host::Word::Value REALFolderItemFromParentFSRef(const FSRef& parent, const HFSUniStr255& name) {
  return REALFolderItemFromParentFSRef(&parent, &name);
}
