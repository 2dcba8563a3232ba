// UTF-8 and UTF-16 as ICU converts them: the oracle for conversions. Link ICU::uc. Any thread.
#pragma once

#include <unicode/ustring.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace support {

/// Nullopt for malformed text.
inline std::optional<std::u16string> utf16ByIcu(std::string_view utf8) {
  std::u16string units(utf8.size(), u'\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &length, utf8.data(),
                static_cast<int32_t>(utf8.size()), &status);
  if (U_FAILURE(status)) {
    return std::nullopt;
  }
  units.resize(static_cast<std::size_t>(length));
  return units;
}

/// Nullopt for malformed text.
inline std::optional<std::string> utf8ByIcu(std::u16string_view utf16) {
  std::string bytes(utf16.size() * 3, '\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8(bytes.data(), static_cast<int32_t>(bytes.size()), &length, utf16.data(),
              static_cast<int32_t>(utf16.size()), &status);
  if (U_FAILURE(status)) {
    return std::nullopt;
  }
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

}  // namespace support
