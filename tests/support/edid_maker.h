// Makes EDIDs for tests, valid ones by default.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace support {

using EdidBytes = std::vector<std::uint8_t>;

struct Monitor {
  std::string vendor = "OST";  ///< three capital letters
  std::uint16_t product = 0x2A17;
  std::uint32_t serial = 20240607;
  /// Up to 13 bytes in code page 437; absent: no name descriptor.
  std::optional<std::string> name = "Test Monitor";
  unsigned extensions = 0;  ///< small CTA-861 blocks that follow the base block
};

/// EDID 1.4 with one detailed timing of 1920 x 1080 pixels, and the name in the descriptor after it.
EdidBytes makeEdid(const Monitor& monitor = {});

/// Sets the byte that makes the sum of the block at `block` (0: the base block) a multiple of 256.
void fixChecksum(EdidBytes& edid, std::size_t block = 0);

}  // namespace support
