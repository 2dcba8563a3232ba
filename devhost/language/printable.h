// Untrusted bytes, made safe to show on a terminal. Any thread may call.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace devhost {

/// For one line of a terminal or a report: control characters, invalid UTF-8, and characters that change the direction
/// of writing become \n, \t, \x1b, \u202e and so on. Everything else stays.
std::string printable(std::string_view bytes);

/// The same for text of many lines: line ends and tabs stay.
std::string printableLines(std::string_view bytes);

/// Columns that UTF-8 text without control characters takes on a terminal: 0 for a combining mark, 2 for a wide
/// character of East Asia and for a pictograph, 1 for all others.
std::size_t columnsOf(std::string_view text);

/// Such text cut to at most `columns` columns: longer text ends in as much of `mark` as fits.
std::string shortened(std::string_view text, std::size_t columns, std::string_view mark);

/// Such text with a question mark for each column that is not ASCII.
std::string asciiOnly(std::string_view text);

}  // namespace devhost
