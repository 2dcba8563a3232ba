#include "strings/utils.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

constexpr char32_t kFirstSupplementary = 0x10000;
constexpr std::size_t kAsciiStep = sizeof(std::uint64_t);

[[noreturn]] void refuseBytes() { throw std::range_error("wstring_convert: from_bytes error"); }
[[noreturn]] void refuseUnits() { throw std::range_error("wstring_convert: to_bytes error"); }

// --- UTF-8 to UTF-16

using Byte = unsigned char;

bool isContinuation(Byte byte) { return (byte & 0xC0) == 0x80; }

/// What the first byte of a sequence says about it. The range of the second byte is where overlong forms, surrogates
/// and values above U+10FFFF are refused.
struct Lead {
  std::size_t length = 0;  ///< 0: no sequence begins like this
  Byte second_first = 0x80;
  Byte second_last = 0xBF;
};

Lead leadOf(Byte byte) {
  if (byte < 0xC2) {
    return {};
  }
  if (byte < 0xE0) {
    return {.length = 2};
  }
  switch (byte) {
    case 0xE0:
      return {.length = 3, .second_first = 0xA0};
    case 0xED:
      return {.length = 3, .second_last = 0x9F};
    case 0xF0:
      return {.length = 4, .second_first = 0x90};
    case 0xF4:
      return {.length = 4, .second_last = 0x8F};
    default:
      return {.length = byte < 0xF0 ? 3U : byte < 0xF4 ? 4U : 0U};
  }
}

/// Units that the text makes if it is valid: one per character, and one more per sequence of four bytes.
std::size_t countUnits(const std::string& text) {
  std::size_t units = 0;
  for (const char character : text) {
    const auto byte = static_cast<Byte>(character);
    units += static_cast<std::size_t>(!isContinuation(byte)) + static_cast<std::size_t>(byte >= 0xF0);
  }
  return units;
}

bool isAscii(const Byte* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return (word & 0x8080808080808080U) == 0;
}

/// The character that begins at `bytes`, which is not ASCII; `bytes` moves behind it.
char32_t decode(const Byte*& bytes, const Byte* end) {
  const Lead lead = leadOf(*bytes);
  if (lead.length == 0 || static_cast<std::size_t>(end - bytes) < lead.length || bytes[1] < lead.second_first ||
      bytes[1] > lead.second_last) {
    refuseBytes();
  }
  char32_t character = *bytes & (0x7FU >> lead.length);
  for (std::size_t i = 1; i < lead.length; ++i) {
    if (!isContinuation(bytes[i])) {
      refuseBytes();
    }
    character = character << 6 | (bytes[i] & 0x3FU);
  }
  bytes += lead.length;
  return character;
}

// --- UTF-16 to UTF-8

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool isSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

/// Bytes that the text makes if it is valid.
std::size_t countBytes(const std::wstring& text) {
  std::size_t bytes = 0;
  for (const wchar_t element : text) {
    const auto unit = static_cast<char32_t>(element);
    bytes += 1 + static_cast<std::size_t>(unit >= 0x80) +
             static_cast<std::size_t>(unit >= 0x800 && !isSurrogate(unit));  // four bytes for two surrogates
  }
  return bytes;
}

/// The character that begins at `units`; `units` moves behind it.
char32_t combine(const wchar_t*& units, const wchar_t* end) {
  const auto unit = static_cast<char32_t>(*units++);
  if (unit >= kFirstSupplementary || isLowSurrogate(unit)) {
    refuseUnits();
  }
  if (!isHighSurrogate(unit)) {
    return unit;
  }
  if (units == end || !isLowSurrogate(static_cast<char32_t>(*units))) {
    refuseUnits();
  }
  const auto low = static_cast<char32_t>(*units++);
  return kFirstSupplementary + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

char continuation(char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); }

char* encode(char32_t character, char* out) {
  if (character < 0x80) {
    *out++ = static_cast<char>(character);
    return out;
  }
  if (character < 0x800) {
    *out++ = static_cast<char>(0xC0 | character >> 6);
  } else {
    if (character < kFirstSupplementary) {
      *out++ = static_cast<char>(0xE0 | character >> 12);
    } else {
      *out++ = static_cast<char>(0xF0 | character >> 18);
      *out++ = continuation(character >> 12);
    }
    *out++ = continuation(character >> 6);
  }
  *out++ = continuation(character);
  return out;
}

}  // namespace

namespace Utils {

std::wstring utf8_to_utf16(
    std::string text) {  // NOLINT(performance-unnecessary-value-param): the interface is by value
  std::wstring units(countUnits(text), L'\0');
  wchar_t* out = units.data();
  const auto* bytes = reinterpret_cast<const Byte*>(text.data());
  const Byte* const end = bytes + text.size();
  while (bytes != end) {
    if (static_cast<std::size_t>(end - bytes) >= kAsciiStep && isAscii(bytes)) {
      out = std::copy_n(bytes, kAsciiStep, out);
      bytes += kAsciiStep;
    } else if (*bytes < 0x80) {
      *out++ = *bytes++;
    } else {
      const char32_t character = decode(bytes, end);
      if (character < kFirstSupplementary) {
        *out++ = static_cast<wchar_t>(character);
      } else {
        *out++ = static_cast<wchar_t>(0xD800 + ((character - kFirstSupplementary) >> 10));
        *out++ = static_cast<wchar_t>(0xDC00 + (character & 0x3FF));
      }
    }
  }
  return units;
}

std::string utf16_to_utf8(
    std::wstring text) {  // NOLINT(performance-unnecessary-value-param): the interface is by value
  std::string bytes(countBytes(text), '\0');
  char* out = bytes.data();
  const wchar_t* units = text.data();
  const wchar_t* const end = units + text.size();
  while (units != end) {
    out = encode(combine(units, end), out);
  }
  return bytes;
}

void appendBytes(std::vector<unsigned char>& target, unsigned char* bytes, unsigned long count) {
  target.insert(target.end(), bytes, bytes + count);
}

}  // namespace Utils
