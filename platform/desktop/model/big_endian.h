// Numbers as ICC files store them, most significant byte first. Any thread may call; the caller has checked the bounds.
#pragma once

#include <cstdint>

namespace platform::desktop {

constexpr std::uint16_t bigEndian16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

constexpr std::uint32_t bigEndian32(const std::uint8_t* bytes) {
  return std::uint32_t{bigEndian16(bytes)} << 16 | bigEndian16(bytes + 2);
}

constexpr void putBigEndian32(std::uint8_t* bytes, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) {
    bytes[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
  }
}

}  // namespace platform::desktop
