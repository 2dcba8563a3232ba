#include "support/edid_maker.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

namespace support {
namespace {

constexpr std::size_t kBlockSize = 128;

void put(EdidBytes& edid, std::size_t offset, std::initializer_list<std::uint8_t> bytes) {
  std::copy(bytes.begin(), bytes.end(), edid.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::uint8_t byteOf(std::uint32_t value, unsigned index) { return static_cast<std::uint8_t>(value >> (8 * index)); }

void putIdentity(EdidBytes& edid, const Monitor& monitor) {
  std::uint32_t letters = 0;
  for (const char letter : monitor.vendor) {
    letters = letters << 5 | static_cast<std::uint32_t>(letter - 'A' + 1);
  }
  put(edid, 8, {byteOf(letters, 1), byteOf(letters, 0), byteOf(monitor.product, 0), byteOf(monitor.product, 1)});
  for (unsigned i = 0; i < 4; ++i) {
    edid[12 + i] = byteOf(monitor.serial, i);
  }
}

/// A text descriptor: the text, a line feed, and blanks to its end.
void putName(EdidBytes& edid, std::size_t offset, const std::string& name) {
  constexpr std::size_t kTextSize = 13;
  put(edid, offset, {0, 0, 0, 0xFC, 0});
  std::string text = name.substr(0, kTextSize);
  if (text.size() < kTextSize) {
    text += '\n';
  }
  text.resize(kTextSize, ' ');
  std::copy(text.begin(), text.end(), edid.begin() + static_cast<std::ptrdiff_t>(offset) + 5);
}

EdidBytes smallExtension() {
  EdidBytes block(kBlockSize);
  // CTA-861 revision 3; one data block, the video capabilities, of 2 bytes; no timings behind it, at offset 7. Computer
  // video is underscanned, and the quantization range can be chosen.
  put(block, 0, {0x02, 0x03, 7, 0x80, 0xE2, 0x00, 0x4A});
  return block;
}

}  // namespace

EdidBytes makeEdid(const Monitor& monitor) {
  EdidBytes edid(kBlockSize);
  put(edid, 0, {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00});
  putIdentity(edid, monitor);
  put(edid, 16, {23, 34, 1, 4});             // week 23 of 2024, EDID 1.4
  put(edid, 20, {0xA5, 60, 34, 120, 0x26});  // DisplayPort, 8 bits, 60 x 34 cm, gamma 2.2, sRGB, native timing
  put(edid, 25, {0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54});  // the primaries of sRGB
  put(edid, 35, {0x21, 0x08, 0x00});  // 640 x 480, 800 x 600, 1024 x 768 at 60 Hz
  for (std::size_t offset = 38; offset < 54; ++offset) {
    edid[offset] = 0x01;  // no standard timings
  }
  // 1920 x 1080 at 60 Hz: 148.5 MHz, CEA-861 format 16.
  put(edid, 54,
      {0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58, 0x2C, 0x45, 0x00, 0x58, 0x54, 0x21, 0x00, 0x00, 0x1E});
  put(edid, 72, {0, 0, 0, 0xFD, 0, 50, 75, 30, 83, 17, 0x01, '\n', ' ', ' ', ' ', ' ', ' ', ' '});  // range limits
  constexpr std::size_t kName = 90;
  put(edid, kName, {0, 0, 0, 0x10, 0});  // unused
  put(edid, 108, {0, 0, 0, 0x10, 0});
  if (monitor.name) {
    putName(edid, kName, *monitor.name);
  }
  edid[126] = static_cast<std::uint8_t>(monitor.extensions);
  fixChecksum(edid);
  for (unsigned i = 1; i <= monitor.extensions; ++i) {
    const EdidBytes extension = smallExtension();
    edid.insert(edid.end(), extension.begin(), extension.end());
    fixChecksum(edid, i);
  }
  return edid;
}

void fixChecksum(EdidBytes& edid, std::size_t block) {
  const auto begin = edid.begin() + static_cast<std::ptrdiff_t>(block * kBlockSize);
  const auto last = begin + kBlockSize - 1;
  *last = static_cast<std::uint8_t>(-std::accumulate(begin, last, 0u));
}

}  // namespace support
