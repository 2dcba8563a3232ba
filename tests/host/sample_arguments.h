// Arguments for members under test: the types that members.txt names, a telling value of each, and what a callee must
// find.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "host/records.h"

/// The types by their names in members.txt.
namespace type {
using string = REALstringStruct*;
using object = REALobjectStruct*;
using array = REALarrayStruct*;
using classref = REALclassRefStruct*;
using text = const RuntimeText*;
using module = REALmoduleDefinition*;
using description = REALpictureDescription*;
using pointer = void*;
using cstring = const char*;
using wstring = const wchar_t*;
using pstring = const unsigned char*;
using cfstring = CFStringRef;
using fsref = const FSRef*;
using unistr = const HFSUniStr255*;
using boolean = bool;
using int8 = std::int8_t;
using int16 = std::int16_t;
using int32 = std::int32_t;
using int64 = std::int64_t;
using uint8 = std::uint8_t;
using uint16 = std::uint16_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;
using index = long long;
using single = float;
using float64 = double;
/// A bool* that the member must keep to itself; see Expected::hidden.
struct ownbyte {};
}  // namespace type

/// The value of a T for the argument at `position`: no two positions alike, every byte telling, signed values negative.
template <typename T>
T sample(int position) {
  constexpr std::uint64_t kPattern = 0x8182838485868790;
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(static_cast<std::uintptr_t>(0x717283848580 + 16 * position));
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(-0.1) - static_cast<T>(position);
  } else if constexpr (std::is_same_v<T, bool>) {
    return true;
  } else {
    return static_cast<T>(kPattern + static_cast<unsigned>(position));
  }
}

/// What a callee must find in the register of one argument.
struct Expected {
  bool floating = false;
  bool hidden = false;     ///< An address, but not the one that the caller passed.
  std::uint64_t bits = 0;  ///< Of an integer narrower than 32 bits: extended to 32 bits where callers do that.
  std::uint64_t mask = ~0ull;
};

#if defined(__aarch64__) && !defined(__APPLE__)
/// The procedure call standard of arm64 has the callee extend a narrow integer.
constexpr std::size_t kExtendedBytes = 0;
#else
/// Callers extend to 32 bits on Apple's arm64, and by all compilers' practice on x86_64.
constexpr std::size_t kExtendedBytes = 4;
#endif

template <typename T>
Expected expectedOf(T value) {
  Expected expected;
  if constexpr (std::is_pointer_v<T>) {
    expected.bits = reinterpret_cast<std::uintptr_t>(value);
  } else if constexpr (std::is_same_v<T, double>) {
    expected.floating = true;
    expected.bits = std::bit_cast<std::uint64_t>(value);
  } else if constexpr (std::is_same_v<T, float>) {
    expected.floating = true;
    expected.bits = std::bit_cast<std::uint32_t>(value);
    expected.mask = 0xFFFFFFFF;
  } else if constexpr (sizeof(T) == 8) {
    expected.bits = static_cast<std::uint64_t>(value);
  } else {
    expected.mask = (std::uint64_t{1} << (8 * std::max(sizeof(T), kExtendedBytes))) - 1;
    expected.bits = static_cast<std::uint64_t>(value) & expected.mask;
  }
  return expected;
}
