#include "strings/utils.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;
constexpr std::size_t kAsciiStep = sizeof(std::uint64_t);  // characters that are tested together
constexpr std::size_t kMostBytesPerUnit = 3;

[[noreturn]] void refuseBytes() { throw std::range_error("wstring_convert: from_bytes error"); }
[[noreturn]] void refuseUnits() { throw std::range_error("wstring_convert: to_bytes error"); }

// --- UTF-8 to UTF-16

using Byte = unsigned char;

bool isContinuation(Byte byte) { return (byte & 0xC0) == 0x80; }
bool isSurrogate(char32_t code) { return (code & 0xFFFFF800) == 0xD800; }

bool isAscii(const Byte* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return (word & 0x8080808080808080U) == 0;
}

/// The bits of a sequence of `length` bytes. Refuses it when it is cut short.
char32_t bitsOf(const Byte* bytes, const Byte* end, std::ptrdiff_t length) {
  if (end - bytes < length) {
    refuseBytes();
  }
  char32_t bits = bytes[0] & (0x7FU >> length);
  for (std::ptrdiff_t i = 1; i < length; ++i) {
    if (!isContinuation(bytes[i])) {
      refuseBytes();
    }
    bits = bits << 6 | (bytes[i] & 0x3FU);
  }
  return bits;
}

/// Writes the character that begins at `bytes`, which is not ASCII; both move behind it.
void decode(const Byte*& bytes, const Byte* end, wchar_t*& out) {
  const Byte lead = *bytes;
  if (lead < 0xE0) {
    const char32_t code = bitsOf(bytes, end, 2);
    if (lead < 0xC2) {  // a continuation byte, or an overlong form
      refuseBytes();
    }
    *out++ = static_cast<wchar_t>(code);
    bytes += 2;
  } else if (lead < 0xF0) {
    const char32_t code = bitsOf(bytes, end, 3);
    if (code < 0x800 || isSurrogate(code)) {
      refuseBytes();
    }
    *out++ = static_cast<wchar_t>(code);
    bytes += 3;
  } else {
    const char32_t code = bitsOf(bytes, end, 4);
    if (lead > 0xF4 || code < kFirstSupplementary || code > kLastCodePoint) {
      refuseBytes();
    }
    *out++ = static_cast<wchar_t>(0xD800 + ((code - kFirstSupplementary) >> 10));
    *out++ = static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
    bytes += 4;
  }
}

// --- UTF-16 to UTF-8

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// Whether the next kAsciiStep units are all ASCII.
bool isAscii(const wchar_t* units) {
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < kAsciiStep; ++i) {
    all |= static_cast<std::uint32_t>(units[i]);
  }
  return all < 0x80;
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
    std::string text) {                    // NOLINT(performance-unnecessary-value-param): the interface is by value
  std::wstring units(text.size(), L'\0');  // no text makes more units than it has bytes
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
      decode(bytes, end, out);
    }
  }
  units.resize(static_cast<std::size_t>(out - units.data()));
  return units;
}

std::string utf16_to_utf8(
    std::wstring text) {  // NOLINT(performance-unnecessary-value-param): the interface is by value
  std::string bytes(text.size() * kMostBytesPerUnit, '\0');
  char* out = bytes.data();
  const wchar_t* units = text.data();
  const wchar_t* const end = units + text.size();
  while (units != end) {
    if (static_cast<std::size_t>(end - units) >= kAsciiStep && isAscii(units)) {
      out = std::transform(units, units + kAsciiStep, out, [](wchar_t unit) { return static_cast<char>(unit); });
      units += kAsciiStep;
    } else {
      out = encode(combine(units, end), out);
    }
  }
  bytes.resize(static_cast<std::size_t>(out - bytes.data()));
  return bytes;
}

void appendBytes(std::vector<unsigned char>& target, unsigned char* bytes, unsigned long count) {
  target.insert(target.end(), bytes, bytes + count);
}

}  // namespace Utils
