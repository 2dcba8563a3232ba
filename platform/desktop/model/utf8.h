// Writing UTF-8, and telling whether bytes are UTF-8. Any thread may call.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform::desktop {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Bytes that `character`, a Unicode scalar value, takes.
constexpr std::size_t utf8Size(char32_t character) {
  return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

/// `character` is a Unicode scalar value.
void appendUtf8(std::string& text, char32_t character);

/// True for well-formed UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool isUtf8(std::string_view text);

}  // namespace platform::desktop
