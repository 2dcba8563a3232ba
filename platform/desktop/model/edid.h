// Who a monitor says it is: the identity in the base block of its EDID. Any thread may call.
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
  std::uint32_t serial = 0;  ///< 0: the monitor does not tell
  /// The text of the product name descriptor, up to its line feed, without blanks at the end, in UTF-8. Absent when
  /// there is no such descriptor, and when it holds only blanks. Never empty.
  std::optional<std::string> name;
};

/// Nothing when the bytes are no EDID of version 1: fewer than 128 bytes, another header or version, or a wrong
/// checksum. Extension blocks are not looked at, so neither their number nor their contents matter.
PLATFORM_API std::optional<Edid> decodeEdid(std::span<const std::uint8_t> bytes);

}  // namespace platform::desktop
