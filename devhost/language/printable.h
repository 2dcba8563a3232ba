// Bytes from elsewhere, made safe to show on a terminal. Any thread may call.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace devhost {

/// For one line of a terminal or a report: control characters, bytes that are no UTF-8, and characters that change the
/// direction of writing come out as \n, \t, \x1b, \u202e and so on. Everything else is left as it is.
std::string printable(std::string_view bytes);

/// The same for text of many lines: line ends and tabs stay.
std::string printableLines(std::string_view bytes);

/// Columns that UTF-8 text without control characters takes on a terminal: none for combining marks, two for the wide
/// characters of East Asia and for pictographs, one for all else.
std::size_t columnsOf(std::string_view text);

/// The same kind of text, cut to at most `columns` columns: what is too long ends in `mark`, as far as that fits.
std::string shortened(std::string_view text, std::size_t columns, std::string_view mark);

/// The same kind of text with a question mark for each column of what is not ASCII.
std::string asciiOnly(std::string_view text);

}  // namespace devhost
