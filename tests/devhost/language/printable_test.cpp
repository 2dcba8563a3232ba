// Untrusted bytes, made safe for a terminal.
#include "devhost/language/printable.h"

#include <gtest/gtest.h>

namespace devhost {
namespace {

using namespace std::string_view_literals;

TEST(Printable, CopiesPlainText) {
  EXPECT_EQ(printable("plain, Ünïcödé, 日本, \\n"), "plain, Ünïcödé, 日本, \\n");
  EXPECT_EQ(printable(""), "");
}

TEST(Printable, EscapesControlCharacters) {
  EXPECT_EQ(printable("a\nb\tc\rd\x1b[2Je\x7f"sv), "a\\nb\\tc\\rd\\x1b[2Je\\x7f");
  EXPECT_EQ(printable("a\0b"sv), "a\\x00b");
  EXPECT_EQ(printable("\xc2\x85"), "\\u0085");
}

TEST(Printable, EscapesCharactersThatTurnTheDirectionOfWriting) {
  EXPECT_EQ(printable("a\u202Eb\u2066c\u2028"), "a\\u202eb\\u2066c\\u2028");
}

TEST(Printable, EscapesInvalidUtf8) {
  EXPECT_EQ(printable("\xff"), "\\xff");
  EXPECT_EQ(printable("\xc3"), "\\xc3");
  EXPECT_EQ(printable("\xc0\x80"), "\\xc0\\x80");
  EXPECT_EQ(printable("\xe0\x80\x80"), "\\xe0\\x80\\x80");
  EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");
  EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
  EXPECT_EQ(printable("\xf0\x9f\x98"), "\\xf0\\x9f\\x98");
}

TEST(PrintableLines, KeepsLineEndsAndTabs) { EXPECT_EQ(printableLines("a\n\tb\x1b"), "a\n\tb\\x1b"); }

TEST(ColumnsOf, CountsWideAndCombiningCharacters) {
  EXPECT_EQ(columnsOf(""), 0U);
  EXPECT_EQ(columnsOf("abc"), 3U);
  EXPECT_EQ(columnsOf("Ü"), 1U);
  EXPECT_EQ(columnsOf("U\u0308"), 1U);
  EXPECT_EQ(columnsOf("日本"), 4U);
}

TEST(Printable, EscapesCodePointsThatAreNotCharacters) {
  EXPECT_EQ(printable("\uFFFE\uFFFF\uFFFD"), "\\ufffe\\uffff\uFFFD");
  EXPECT_EQ(printable("\U0001FFFE\U0010FFFF"), "\\u1fffe\\u10ffff");
}

TEST(Shortened, CopiesTextThatFits) {
  EXPECT_EQ(shortened("abc", 3, "…"), "abc");
  EXPECT_EQ(shortened("", 0, "…"), "");
}

TEST(Shortened, EndsLongTextInTheMark) {
  EXPECT_EQ(shortened("abcd", 3, "…"), "ab…");
  EXPECT_EQ(shortened("abcd", 3, "..."), "...");
  EXPECT_EQ(shortened("abcd", 2, "..."), "..");
  EXPECT_EQ(shortened("abcd", 0, "…"), "");
}

TEST(Shortened, CutsBetweenCharactersOnly) {
  EXPECT_EQ(shortened("日本語", 5, "…"), "日本…");
  EXPECT_EQ(shortened("日本語", 4, "…"), "日…");
  EXPECT_EQ(shortened("e\u0301e\u0301e\u0301", 2, "…"), "e\u0301…");
}

TEST(AsciiOnly, ReplacesEachColumnThatIsNotAscii) {
  EXPECT_EQ(asciiOnly("a é 日\u0301 b"), "a ? ?? b");
  EXPECT_EQ(asciiOnly("\xff"), "?");
}

}  // namespace
}  // namespace devhost
