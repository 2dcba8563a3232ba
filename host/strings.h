// Strings.
//
// Host's thread. A string that is built belongs to the caller, who hands it on or gives it back with REALUnlockString;
// the contents of a string belong to the host and last as long as the string.
#pragma once

#include <cstdint>

#include "host/handles.h"
#include "host/objects.h"
#include "host/table.h"

/// UTF-8 in CoreFoundation's numbering of text encodings, which is the host's too.
inline constexpr std::uint32_t kHostEncodingUTF8 = 0x08000100;

// clang-format off

//          member                         host entry                       result
HOST_EXACT (REALBuildStringWithEncoding,   "REALBuildStringWithEncoding",   As<REALstringStruct*>, (const char* bytes, int length, std::uint32_t encoding), (bytes, length, encoding))
HOST_EXACT (REALUnlockString,              "REALUnlockString",              Nothing,               (REALstringStruct* string), (string))

// clang-format on

HOST_SLOT(REALGetStringContents, "StringGetCString")
HOST_SLOT(REALGetStringContentsLength, "LenB( s as string ) as integer")
/// The string's bytes, NUL-terminated, or null for a null string. `outLength` may be null; it receives the number of
/// bytes, unless the host cannot count them, which does not keep the bytes back. The length is asked for first.
inline const char* REALGetStringContents(REALstringStruct* string, std::int64_t* outLength) {
  if (string == nullptr) {
    return nullptr;
  }
  void* const contents = host::find<host::slots::REALGetStringContents>();
  void* const length = host::findFrameworkMethod<host::slots::REALGetStringContentsLength>();
  if (outLength != nullptr && length != nullptr) {
    *outLength = host::invoke<std::int64_t>(length, string);
  }
  return contents != nullptr ? host::invoke<const char*>(contents, string) : nullptr;
}
