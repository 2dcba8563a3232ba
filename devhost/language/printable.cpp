#include "devhost/language/printable.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <optional>

namespace devhost {
namespace {

/// The code point of a well-formed UTF-8 sequence of `bytes`, which has the length that its first byte asks for.
std::optional<std::uint32_t> decoded(std::string_view bytes) {
  const std::size_t length = bytes.size();
  if (length == 1) {
    const auto byte = static_cast<unsigned char>(bytes.front());
    return byte < 0x80 ? std::optional<std::uint32_t>(byte) : std::nullopt;
  }
  std::uint32_t code_point = static_cast<unsigned char>(bytes.front()) & (0xFFU >> (length + 1));
  for (const char byte : bytes.substr(1)) {
    const auto next = static_cast<unsigned char>(byte);
    if ((next & 0xC0U) != 0x80) {
      return std::nullopt;
    }
    code_point = code_point << 6U | (next & 0x3FU);
  }
  const bool overlong = (length == 3 && code_point < 0x800) || (length == 4 && code_point < 0x10000);
  const bool surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
  return overlong || surrogate || code_point > 0x10FFFF ? std::nullopt : std::optional<std::uint32_t>(code_point);
}

struct Character {
  std::string_view bytes;
  std::optional<std::uint32_t> code_point;  ///< nothing for a byte of invalid UTF-8
};

/// Removes the first character of `text`, which is not empty.
Character takeCharacter(std::string_view& text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead >= 0xF0 && lead <= 0xF4  ? 4
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                                                           : 1;
  Character character{text.substr(0, length), std::nullopt};
  character.code_point = character.bytes.size() == length ? decoded(character.bytes) : std::nullopt;
  if (!character.code_point) {
    character.bytes = text.substr(0, 1);
  }
  text.remove_prefix(character.bytes.size());
  return character;
}

/// Control characters, characters that turn the direction of writing, and code points that are not characters.
bool isUnsafe(std::uint32_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || (c >= 0x200E && c <= 0x200F) ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF || (c & 0xFFFEU) == 0xFFFE;
}

std::string escaped(const Character& character) {
  const std::uint32_t code = character.code_point.value_or(static_cast<unsigned char>(character.bytes.front()));
  switch (code) {
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
  std::snprintf(text, sizeof text, character.bytes.size() == 1 ? "\\x%02x" : "\\u%04x", code);
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

std::size_t columnsOf(const Character& character) {
  const std::uint32_t code = character.code_point.value_or(0);
  return isIn(kCombining, code) ? 0U : isIn(kWide, code) ? 2U : 1U;
}

std::string escape(std::string_view bytes, bool keep_lines) {
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    const Character character = takeCharacter(bytes);
    const std::optional<std::uint32_t> code = character.code_point;
    const bool keep = code && (!isUnsafe(*code) || (keep_lines && (*code == '\n' || *code == '\t')));
    result += keep ? std::string(character.bytes) : escaped(character);
  }
  return result;
}

}  // namespace

std::string printable(std::string_view bytes) { return escape(bytes, false); }

std::string printableLines(std::string_view bytes) { return escape(bytes, true); }

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    columns += columnsOf(takeCharacter(text));
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
    if (columnsOf(character) > left) {
      break;
    }
    left -= columnsOf(character);
    result += character.bytes;
  }
  return result += mark;
}

std::string asciiOnly(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const Character character = takeCharacter(text);
    result += character.code_point && *character.code_point < 0x80 ? std::string(character.bytes)
                                                                   : std::string(columnsOf(character), '?');
  }
  return result;
}

}  // namespace devhost
