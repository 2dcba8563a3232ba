#include "desktop/model/utf8.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

namespace platform::desktop {
namespace {

struct CloseConverter {
  void operator()(void* converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<void, CloseConverter>;

/// Null when this system cannot convert from the encoding.
Converter openConverter(const char* encoding) {
  void* const converter = iconv_open("UTF-8", encoding);
  return Converter(reinterpret_cast<std::intptr_t>(converter) != -1 ? converter : nullptr);
}

char lowerCase(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

char continuation(char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); }

/// By the first byte of a sequence; 0 for a byte that begins none.
std::size_t sequenceLength(unsigned char lead) {
  return lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
}

}  // namespace

void appendUtf8(std::string& text, char32_t character) {
  if (character < 0x80) {
    text.push_back(static_cast<char>(character));
  } else if (character < 0x800) {
    text += {static_cast<char>(0xC0 | character >> 6), continuation(character)};
  } else if (character < 0x10000) {
    text += {static_cast<char>(0xE0 | character >> 12), continuation(character >> 6), continuation(character)};
  } else {
    text += {static_cast<char>(0xF0 | character >> 18), continuation(character >> 12), continuation(character >> 6),
             continuation(character)};
  }
}

bool isUtf8(std::string_view bytes) {
  constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};  // a smaller one has a shorter sequence
  while (!bytes.empty()) {
    const auto lead = static_cast<unsigned char>(bytes.front());
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || length > bytes.size()) {
      return false;
    }
    char32_t character = length == 1 ? lead : lead & (0x7FU >> length);
    for (const char byte : bytes.substr(1, length - 1)) {
      if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) {
        return false;
      }
      character = character << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    if (character < kLeast[length] || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
      return false;
    }
    bytes.remove_prefix(length);
  }
  return true;
}

bool equalsIgnoringCase(std::string_view first, std::string_view second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

std::string utf8From(const char* encoding, std::string_view bytes) {
  constexpr std::size_t kMostBytesForOne = 4;
  const Converter converter = openConverter(encoding);
  std::string text;
  std::string converted(kMostBytesForOne * bytes.size(), '\0');
  char* in = const_cast<char*>(bytes.data());  // iconv only reads
  std::size_t left = bytes.size();
  while (left > 0) {
    char* out = converted.data();
    std::size_t room = converted.size();
    const bool failed =
        converter == nullptr || iconv(converter.get(), &in, &left, &out, &room) == static_cast<std::size_t>(-1);
    text.append(converted.data(), out);
    if (failed) {
      const auto byte = static_cast<unsigned char>(*in);
      appendUtf8(text, byte < 0x80 ? byte : kReplacementCharacter);
      ++in;
      --left;
    }
  }
  return text;
}

}  // namespace platform::desktop
