#include "desktop/model/edid.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "desktop/model/utf8.h"

namespace platform::desktop {
namespace {

using Block = std::span<const std::uint8_t, kEdidBlockSize>;

constexpr std::array<std::uint8_t, 8> kHeader = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr std::size_t kVendorOffset = 8;    // big-endian, unlike the two that follow
constexpr std::size_t kProductOffset = 10;  // little-endian
constexpr std::size_t kSerialOffset = 12;   // little-endian
constexpr std::size_t kVersionOffset = 18;
constexpr std::uint8_t kVersion = 1;
constexpr std::array<std::size_t, 4> kDescriptorOffsets = {54, 72, 90, 108};
constexpr std::size_t kDescriptorTextOffset = 5;
constexpr std::size_t kDescriptorTextSize = 13;
constexpr std::uint8_t kProductNameTag = 0xFC;

bool isValid(Block block) {
  unsigned sum = 0;
  for (const std::uint8_t byte : block) {
    sum += byte;
  }
  return std::equal(kHeader.begin(), kHeader.end(), block.begin()) && block[kVersionOffset] == kVersion &&
         sum % 256 == 0;
}

/// A descriptor is a timing when its first two bytes, the pixel clock, are not zero; otherwise the fourth is its kind.
bool isProductName(Block block, std::size_t descriptor) {
  return block[descriptor] == 0 && block[descriptor + 1] == 0 && block[descriptor + 2] == 0 &&
         block[descriptor + 3] == kProductNameTag;
}

/// A text is in code page 437, ends with a line feed and is then filled up with blanks; many monitors end or fill it
/// with zero bytes or a carriage return. Control characters are left out: a display's name is shown on one line.
std::string descriptorText(Block block, std::size_t descriptor) {
  constexpr std::array<std::uint8_t, 3> kEnds = {'\n', '\r', '\0'};
  const auto field = block.subspan(descriptor + kDescriptorTextOffset, kDescriptorTextSize);
  const auto end = std::find_first_of(field.begin(), field.end(), kEnds.begin(), kEnds.end());
  std::string bytes;
  std::copy_if(field.begin(), end, std::back_inserter(bytes),
               [](std::uint8_t byte) { return byte >= 0x20 && byte != 0x7F; });
  std::string text = utf8From("CP437", bytes);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::optional<std::string> productName(Block block) {
  for (const std::size_t descriptor : kDescriptorOffsets) {
    if (!isProductName(block, descriptor)) {
      continue;
    }
    if (std::string text = descriptorText(block, descriptor); !text.empty()) {
      return text;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<Edid> decodeEdid(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < kEdidBlockSize) {
    return std::nullopt;
  }
  const Block block = bytes.first<kEdidBlockSize>();
  if (!isValid(block)) {
    return std::nullopt;
  }
  Edid edid;
  edid.vendor = static_cast<std::uint16_t>(block[kVendorOffset] << 8 | block[kVendorOffset + 1]);
  edid.product = static_cast<std::uint16_t>(block[kProductOffset] | block[kProductOffset + 1] << 8);
  for (std::size_t byte = 0; byte < 4; ++byte) {
    edid.serial |= static_cast<std::uint32_t>(block[kSerialOffset + byte]) << (8 * byte);
  }
  edid.name = productName(block);
  return edid;
}

}  // namespace platform::desktop
