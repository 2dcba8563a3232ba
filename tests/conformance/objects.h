// CoreFoundation objects, made and read in one line each.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/owned_ref.h"

namespace conformance {

using String = OwnedRef<CFStringRef>;
using Url = OwnedRef<CFURLRef>;
using Data = OwnedRef<CFDataRef>;
using Number = OwnedRef<CFNumberRef>;
using Dictionary = OwnedRef<CFDictionaryRef>;
using Uuid = OwnedRef<CFUUIDRef>;

inline String makeString(const std::string& utf8) {
  return String::adopt(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                               static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

/// UTF-16 code units of a string, which may begin or end with one half of a surrogate pair.
inline String makePart(CFStringRef string, CFIndex begin, CFIndex length) {
  return String::adopt(CFStringCreateWithSubstring(kCFAllocatorDefault, string, CFRangeMake(begin, length)));
}

inline std::optional<std::string> textOf(CFStringRef string) {
  std::vector<char> buffer(1 + static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(CFStringGetLength(string),
                                                                                          kCFStringEncodingUTF8)));
  if (!CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(buffer.size()), kCFStringEncodingUTF8)) {
    return std::nullopt;
  }
  return buffer.data();
}

inline Url makeFileUrl(const std::string& path, bool is_directory = false) {
  return Url::adopt(CFURLCreateWithFileSystemPath(kCFAllocatorDefault, makeString(path).get(), kCFURLPOSIXPathStyle,
                                                  static_cast<Boolean>(is_directory)));
}

inline Number makeNumber(std::int64_t value) {
  return Number::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

inline Number makeReal(double value) {
  return Number::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
}

/// Whether the number was read whole, and what was read.
inline std::pair<bool, std::int32_t> read32(CFNumberRef number) {
  std::int32_t value = 12345;
  const bool exact = CFNumberGetValue(number, kCFNumberSInt32Type, &value) != 0;
  return {exact, value};
}

inline std::pair<bool, std::int64_t> read64(CFNumberRef number) {
  std::int64_t value = 12345;
  const bool exact = CFNumberGetValue(number, kCFNumberSInt64Type, &value) != 0;
  return {exact, value};
}

inline Data makeData(const std::vector<UInt8>& bytes) {
  return Data::adopt(CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size())));
}

inline Dictionary makeDictionary(std::vector<const void*> keys, std::vector<const void*> values) {
  return Dictionary::adopt(CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                              static_cast<CFIndex>(keys.size()), &kCFTypeDictionaryKeyCallBacks,
                                              &kCFTypeDictionaryValueCallBacks));
}

inline constexpr const char* kUuidText = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
inline constexpr CFUUIDBytes kUuidBytes = {0xE6, 0x21, 0xE1, 0xF8, 0xC3, 0x6C, 0x49, 0x5A,
                                           0x93, 0xFC, 0x0C, 0x24, 0x7A, 0x3E, 0x6E, 0x5F};

inline Uuid makeUuid(const std::string& text) {
  return Uuid::adopt(CFUUIDCreateFromString(kCFAllocatorDefault, makeString(text).get()));
}

}  // namespace conformance
