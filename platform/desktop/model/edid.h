// The identity of a monitor, in the base block of its EDID. Any thread may call.
//
// Source: VESA Enhanced EDID Standard, release A revision 2 (base block structure 1.4), sections 3.3 and 3.10.3.4.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "desktop/model/export.h"

namespace platform::desktop {

/// The size of the base block in bytes; extension blocks of the same size may follow it.
inline constexpr std::size_t kEdidBlockSize = 128;

struct Edid {
  std::uint16_t vendor = 0;  ///< three letters packed into 16 bits, as CoreGraphics gives them: "APP" is 0x0610
  std::uint16_t product = 0;
  std::uint32_t serial = 0;  ///< 0: none
  /// The text of the product name descriptor, up to its line feed, without trailing blanks, in UTF-8. Absent without
  /// such a descriptor, and for one of blanks. Never empty.
  std::optional<std::string> name;
};

/// Nothing for an invalid EDID: fewer than 128 bytes, another header or version than 1, or a wrong checksum. Extension
/// blocks are ignored.
PLATFORM_API std::optional<Edid> decodeEdid(std::span<const std::uint8_t> bytes);

}  // namespace platform::desktop
