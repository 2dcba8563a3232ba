#include "desktop/model/utf8.h"

#include <cstdint>

namespace platform::desktop {
namespace {

/// Bytes in the sequence that begins at `index`, or 0 when there is no well-formed one.
std::size_t sequenceSize(std::string_view text, std::size_t index) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byte(index);
  if (lead < 0x80) {
    return 1;
  }
  if (lead < 0xC2 || lead > 0xF4) {
    return 0;
  }
  const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() - index < size) {
    return 0;
  }
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(index + i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  const std::uint8_t second = byte(index + 1);
  const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
  const bool surrogate = lead == 0xED && second >= 0xA0;
  const bool too_large = lead == 0xF4 && second >= 0x90;
  return overlong || surrogate || too_large ? 0 : size;
}

}  // namespace

void appendUtf8(std::string& text, char32_t character) {
  const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  switch (utf8Size(character)) {
    case 1:
      put(character);
      return;
    case 2:
      put(0xC0 | character >> 6);
      break;
    case 3:
      put(0xE0 | character >> 12);
      put(0x80 | (character >> 6 & 0x3F));
      break;
    default:
      put(0xF0 | character >> 18);
      put(0x80 | (character >> 12 & 0x3F));
      put(0x80 | (character >> 6 & 0x3F));
      break;
  }
  put(0x80 | (character & 0x3F));
}

bool isUtf8(std::string_view text) {
  for (std::size_t index = 0; index < text.size();) {
    const std::size_t size = sequenceSize(text, index);
    if (size == 0) {
      return false;
    }
    index += size;
  }
  return true;
}

}  // namespace platform::desktop
