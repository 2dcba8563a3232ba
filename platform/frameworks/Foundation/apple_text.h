// Text as Apple's Foundation converts and searches it; tests/conformance compares. Any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Nullopt for a character that ASCII lacks, unless `lossy`: then a letter or sign that looks like it, or "?".
std::optional<std::string> asciiBytes(std::u16string_view text, bool lossy);
/// Nullopt for a character that Mac Roman lacks, unless `lossy`: then "?". Ignorable characters are dropped.
std::optional<std::string> macRomanBytes(std::u16string_view text, bool lossy);
/// Without a byte-order mark of its own.
std::string utf16BigEndianBytes(std::u16string_view text);

struct TextRange {
  std::size_t location;
  std::size_t length;
};
/// The first text that is canonically equivalent to `part`, and that no mark or joined character continues. An empty
/// part is never found. A part with half of a surrogate pair is searched as code units.
std::optional<TextRange> findText(std::u16string_view text, std::u16string_view part);

}  // namespace platform
