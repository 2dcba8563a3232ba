// Strings and text values.
//
// Host's thread. A string that is built belongs to the caller, who passes it on or releases it with REALUnlockString;
// the contents of a string belong to the host and last as long as the string. A text that is built belongs to the
// caller, who releases it with REALUnlockText.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "host/objects.h"
#include "host/table.h"

/// UTF-8 in CoreFoundation's numbering of text encodings, which is the host's too.
inline constexpr std::uint32_t kHostEncodingUTF8 = 0x08000100;

// clang-format off

//                 member                       host entry                      result                   arguments
HOST_MEMBER_BESIDE(REALBuildString,             "REALBuildString",              As<REALstringStruct*>,   (const char*, int, unsigned int))
HOST_EXACT        (REALBuildStringWithEncoding, "REALBuildStringWithEncoding",  As<REALstringStruct*>,   (const char* bytes, int length, std::uint32_t encoding), (bytes, length, encoding))
HOST_MEMBER       (REALLockString,              "REALLockString",               Nothing)
HOST_EXACT        (REALUnlockString,            "REALUnlockString",             Nothing,                 (REALstringStruct* string), (string))
HOST_MEMBER       (REALGetStringEncoding,       "REALGetStringEncoding",        Low32)
HOST_MEMBER       (REALSetStringEncoding,       "REALSetStringEncoding",        Nothing)
HOST_MEMBER       (REALConvertString,           "REALConvertString",            As<REALstringStruct*>)
HOST_EXACT        (REALGetSystemTextEncoding,   "REALGetSystemTextEncoding",    Low32Or<kHostEncodingUTF8>, (), ())
HOST_MEMBER       (REALGetStringSystemStr,      "REALGetStringSystemStr",       Word)
HOST_MEMBER       (REALGetStringCFString,       "REALGetStringCFString",        As<CFStringRef>)
HOST_MEMBER       (REALStripAmpersands,         "REALStripAmpersands",          As<REALstringStruct*>)
HOST_MEMBER       (REALGetStringData,           "PluginGetStringData",          TrueIfLowByte)
HOST_MEMBER       (REALDisposeStringData,       "PluginDisposeStringData",      Nothing)
HOST_MEMBER       (REALCopyStringCFString,      "REALGetStringCFString",        As<CFStringRef>)
HOST_MEMBER       (REALCompareStrings,          "RuntimeStringCompare",         Word)
HOST_MEMBER       (REALAddStrings,              "RuntimeAddString",             As<REALstringStruct*>)
HOST_EXACT        (REALCString,                 "StringGetCString",             As<const char*>,         (REALstringStruct* string), (string))
HOST_MEMBER       (REALPString,                 "StringGetPString",             As<const unsigned char*>)
HOST_MEMBER       (REALstringToOSType,          "StringToOSType",               Word)

// Defined below; an entry with parentheses is the declaration of a method of the host's framework:
HOST_SLOT         (REALGetStringContents,       "StringGetCString")
HOST_SLOT         (REALGetStringContentsLength, "LenB( s as string ) as integer")
HOST_SLOT         (REALStringLength,            "LenB( s as string ) as integer")

// Text values:
//           member                 host entry                  result          value
HOST_MEMBER (REALLockText,          "PluginLockText",           Nothing)
HOST_MEMBER (REALUnlockText,        "PluginUnlockText",         Nothing)
HOST_MEMBER (REALBuildText,         "PluginBuildText",          As<const RuntimeText*>)
HOST_MEMBER (REALCompareText,       "PluginCompareText",        Word)
HOST_MEMBER (REALConcatenateText,   "PluginConcatenateText",    As<const RuntimeText*>)
HOST_MEMBER (REALGetTextData,       "PluginGetTextData",        Word)
HOST_MEMBER (REALDisposeTextData,   "PluginDisposeTextData",    Nothing)
HOST_MEMBER (REALCopyTextCFString,  "PluginCopyTextCFString",   As<CFStringRef>)
HOST_VARIANT(REALNewVariantText,    "PluginNewVariantText",                     const RuntimeText*)
HOST_GETTER (REALGetPropValueText,  "PluginGetPropValueText",   TrueIfLowByte,  const RuntimeText*)
HOST_SETTER (REALSetPropValueText,  "PluginSetPropValueText",   TrueIfLowByte,  const RuntimeText*)

// clang-format on

/// As REALBuildStringWithEncoding, deliberately not the entry of other calls of this name.
inline REALstringStruct* REALBuildString(const char* bytes, int length, unsigned int encoding) {
  return REALBuildStringWithEncoding(bytes, length, encoding);
}

/// The number of bytes in `string`, or 0 when the host cannot count them.
inline std::int64_t REALStringLength(REALstringStruct* string) {
  void* const length = host::findFrameworkMethod<host::slots::REALStringLength>();
  return length != nullptr ? host::invoke<std::int64_t>(length, string) : 0;
}

namespace host {

/// The part of REALGetStringContents that comes after the look-ups; either function may be null.
inline const char* readString(void* contents, void* length, REALstringStruct* string, std::int64_t* outLength) {
  if (outLength != nullptr && length != nullptr) {
    *outLength = invoke<std::int64_t>(length, string);
  }
  return contents != nullptr ? invoke<const char*>(contents, string) : nullptr;
}

[[gnu::noinline, gnu::cold]] inline const char* resolveAndReadString(REALstringStruct* string,
                                                                     std::int64_t* outLength) {
  void* const contents = find<slots::REALGetStringContents>();
  void* const length = findFrameworkMethod<slots::REALGetStringContentsLength>();
  return readString(contents, length, string, outLength);
}

}  // namespace host

/// The string's bytes, NUL-terminated, or null for a null string. `outLength` may be null; it receives the number of
/// bytes, unless the host cannot count them; the bytes are returned all the same. The length is read first.
inline const char* REALGetStringContents(REALstringStruct* string, std::int64_t* outLength) {
  if (string == nullptr) {
    return nullptr;
  }
  void* const contents = host::slots::REALGetStringContents::address;
  void* const length = host::slots::REALGetStringContentsLength::address;
  if (contents == nullptr || length == nullptr) [[unlikely]] {
    return host::resolveAndReadString(string, outLength);
  }
  return host::readString(contents, length, string, outLength);
}
