// UTF-8: its validity, and text of other encodings in it. Any thread may call.
#pragma once

#include <string>
#include <string_view>

#include "desktop/model/export.h"

namespace platform::desktop {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// `character` is a Unicode scalar value.
void appendUtf8(std::string& text, char32_t character);

PLATFORM_API bool isUtf8(std::string_view bytes);

/// Case-insensitive for the letters of ASCII.
bool equalsIgnoringCase(std::string_view first, std::string_view second);

/// The bytes in UTF-8. `encoding` is a name of iconv's, of an encoding that contains ASCII. A byte that the encoding
/// does not define becomes U+FFFD, as does every byte above 0x7F when this system cannot convert from the encoding.
PLATFORM_API std::string utf8From(const char* encoding, std::string_view bytes);

}  // namespace platform::desktop
