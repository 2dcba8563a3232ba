#include "devhost/language/printable.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace devhost {
namespace {

/// Length of the well-formed UTF-8 sequence at the front of `bytes`, and its code point; 0 when there is none.
std::size_t decode(std::string_view bytes, std::uint32_t& code_point) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  if (lead < 0x80) {
    code_point = lead;
    return 1;
  }
  const std::size_t length = lead >= 0xF0 && lead <= 0xF4  ? 4
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                                                           : 0;
  if (length == 0 || bytes.size() < length) {
    return 0;
  }
  code_point = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[i]);
    if ((next & 0xC0U) != 0x80) {
      return 0;
    }
    code_point = code_point << 6U | (next & 0x3FU);
  }
  const bool too_long = (length == 3 && code_point < 0x800) || (length == 4 && code_point < 0x10000);
  const bool surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
  return too_long || surrogate || code_point > 0x10FFFF ? 0 : length;
}

/// Characters that would move the cursor, end the line or turn the direction of writing; and what is no character.
bool isUnsafe(std::uint32_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || (c >= 0x200E && c <= 0x200F) ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF || (c & 0xFFFEU) == 0xFFFE;
}

std::string escaped(std::uint32_t c) {
  switch (c) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  char text[16];
  std::snprintf(text, sizeof text, c < 0x80 ? "\\x%02x" : "\\u%04x", c);
  return text;
}

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

constexpr Range kCombining[] = {{0x0300, 0x036F}, {0x0483, 0x0489},  {0x0591, 0x05BD}, {0x0610, 0x061A},
                                {0x064B, 0x065F}, {0x1AB0, 0x1AFF},  {0x1DC0, 0x1DFF}, {0x200B, 0x200D},
                                {0x20D0, 0x20FF}, {0x302A, 0x302D},  {0x3099, 0x309A}, {0xFE00, 0xFE0F},
                                {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF}};
constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},
                           {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
                           {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
                           {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD}};

template <std::size_t kCount>
bool isIn(const Range (&ranges)[kCount], std::uint32_t c) {
  return std::any_of(std::begin(ranges), std::end(ranges), [c](Range r) { return c >= r.first && c <= r.last; });
}

struct Character {
  std::string_view bytes;
  std::size_t columns;
};

/// Removes the first character of `text`, which is not empty.
Character takeCharacter(std::string_view& text) {
  std::uint32_t code_point = 0;
  const std::size_t length = std::max<std::size_t>(decode(text, code_point), 1);
  const Character character{text.substr(0, length), isIn(kCombining, code_point) ? 0U
                                                    : isIn(kWide, code_point)    ? 2U
                                                                                 : 1U};
  text.remove_prefix(length);
  return character;
}

std::string made(std::string_view bytes, bool keep_lines) {
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    std::uint32_t code_point = 0;
    const std::size_t length = decode(bytes, code_point);
    if (length == 0) {
      char text[8];
      std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(bytes.front()));
      result += text;
      bytes.remove_prefix(1);
      continue;
    }
    const bool keep = !isUnsafe(code_point) || (keep_lines && (code_point == '\n' || code_point == '\t'));
    result += keep ? std::string(bytes.substr(0, length)) : escaped(code_point);
    bytes.remove_prefix(length);
  }
  return result;
}

}  // namespace

std::string printable(std::string_view bytes) { return made(bytes, false); }

std::string printableLines(std::string_view bytes) { return made(bytes, true); }

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    columns += takeCharacter(text).columns;
  }
  return columns;
}

std::string shortened(std::string_view text, std::size_t columns, std::string_view mark) {
  if (columnsOf(text) <= columns) {
    return std::string(text);
  }
  if (columnsOf(mark) > columns) {
    return shortened(mark, columns, "");
  }
  std::size_t left = columns - columnsOf(mark);
  std::string result;
  while (!text.empty()) {
    const Character character = takeCharacter(text);
    if (character.columns > left) {
      break;
    }
    left -= character.columns;
    result += character.bytes;
  }
  return result += mark;
}

std::string asciiOnly(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const Character character = takeCharacter(text);
    const bool is_ascii = character.bytes.size() == 1 && static_cast<unsigned char>(character.bytes.front()) < 0x80;
    result += is_ascii ? std::string(character.bytes) : std::string(character.columns, '?');
  }
  return result;
}

}  // namespace devhost
