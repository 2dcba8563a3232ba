// Strings: creation, UTF-8, the plugin's conversions to other encodings, and its search.
#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <string_view>

#include "conformance/text.h"

namespace conformance {
namespace {

using testing::ElementsAre;
using testing::Optional;

CFIndex lengthOf(const String& string) { return string ? CFStringGetLength(string.get()) : -1; }

/// The bytes of a literal, which may hold NULs.
template <std::size_t Size>
Bytes bytesOf(const char (&literal)[Size]) {
  return Bytes(literal, literal + Size - 1);
}

constexpr const char* kMark = "\xEF\xBB\xBF";  // U+FEFF
constexpr const char* kFace = "\xF0\x9F\x98\x80";

// --- creation

TEST(StringCreate, CountsUtf16CodeUnits) {
  EXPECT_EQ(lengthOf(makeString("")), 0);
  EXPECT_EQ(lengthOf(makeString("abc")), 3);
  EXPECT_EQ(lengthOf(makeString("\xC3\xA9")), 1);
  EXPECT_EQ(lengthOf(makeString("e\xCC\x81")), 2);
  EXPECT_EQ(lengthOf(makeString(kFace)), 2);
  EXPECT_EQ(lengthOf(makeString("\xF4\x8F\xBF\xBF")), 2);
  EXPECT_EQ(CFStringGetLength(CFSTR("constant")), 8);
  EXPECT_EQ(lengthOf(String::adopt(CFStringCreateWithBytes(nullptr, nullptr, 0, kCFStringEncodingUTF8, false))), 0);
}

TEST(StringCreate, KeepsNuls) {
  const std::string text("a\0\xC3\xA9", 4);
  const String string = makeString(text);
  EXPECT_EQ(lengthOf(string), 3);
  std::array<char, 8> buffer{};
  EXPECT_TRUE(CFStringGetCString(string.get(), buffer.data(), buffer.size(), kCFStringEncodingUTF8));
  EXPECT_EQ(std::string(buffer.data(), text.size()), text);
}

TEST(StringCreate, ReturnsNullForInvalidUtf8) {
  for (const char* const bytes :
       {"\x80", "\xFF", "a\xC3", "a\xC3z", "\xC0\x80", "\xC1\xBF", "a\xE2\x82", "\xE0\x80\x80", "\xED\xA0\x80",
        "\xED\xBF\xBF", "a\xF0\x9F\x98", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"}) {
    EXPECT_FALSE(makeString(bytes)) << testing::PrintToString(bytes);
    EXPECT_FALSE(decode(bytes)) << testing::PrintToString(bytes);
  }
}

TEST(StringCreate, AcceptsNoncharacters) {
  EXPECT_EQ(lengthOf(makeString("\xEF\xBF\xBE")), 1);
  EXPECT_EQ(lengthOf(makeString("\xEF\xBF\xBF")), 1);
}

TEST(StringCreate, DropsAByteOrderMarkAtTheStart) {
  const std::string marked = kMark + std::string("ab");
  EXPECT_EQ(textOf(makeString(marked).get()), "ab");
  EXPECT_EQ(lengthOf(makeString(kMark)), 0);
  EXPECT_EQ(lengthOf(decode(marked)), 2);
  EXPECT_EQ(lengthOf(decode("a" + marked)), 4);
}

TEST(StringCreate, DropsOneOfTwoByteOrderMarks) {
  const std::string twice = kMark + std::string(kMark) + "ab";
  if (differsOnPlatform("GNUstep drops a mark from the bytes and another one from the characters")) {
    EXPECT_EQ(lengthOf(makeString(twice)), 2);
    return;
  }
  EXPECT_EQ(lengthOf(makeString(twice)), 3);
}

TEST(StringCreate, EndsDecodedTextAtANul) { EXPECT_EQ(lengthOf(decode(std::string("a\0b", 3))), 1); }

// --- UTF-8

TEST(StringEncode, RoundTrips) {
  for (const char* const text : {"", "abc", "\xC3\xA9t\xC3\xA9", "e\xCC\x81", "\xE6\x97\xA5\xE6\x9C\xAC",
                                 "A\xF0\x9F\x98\x80", "\xEF\xBF\xBF", "a\xEF\xBB\xBF"}) {
    EXPECT_EQ(textOf(makeString(text).get()), text);
    EXPECT_EQ(encode(decode(text).get()), text);
  }
}

TEST(StringEncode, EndsAtANul) { EXPECT_EQ(encode(makeString(std::string("a\0b", 3)).get()), "a"); }

TEST(StringEncode, ReturnsNullForALoneSurrogate) {
  const String faces = makeString(std::string("a") + kFace + kFace);
  for (const auto& [begin, length] : {std::pair(0, 2), {1, 1}, {2, 1}, {2, 2}, {2, 3}}) {
    const String part = makePart(faces.get(), begin, length);
    ASSERT_EQ(lengthOf(part), length);
    EXPECT_EQ(encode(part.get()), std::nullopt);
    EXPECT_EQ(textOf(part.get()), std::nullopt);
  }
  EXPECT_EQ(encode(makePart(faces.get(), 1, 2).get()), kFace);
}

TEST(StringEncode, KeepsAByteOrderMark) {
  const String marked = makePart(makeString(std::string("x") + kMark + "a").get(), 1, 2);
  EXPECT_EQ(encode(marked.get()), kMark + std::string("a"));
  EXPECT_EQ(textOf(marked.get()), kMark + std::string("a"));
}

TEST(StringGetCString, NeedsRoomForTheTextAndItsEnd) {
  const String string = makeString("abc\xC3\xA9");
  std::array<char, 8> buffer{};
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), 5, kCFStringEncodingUTF8));
  EXPECT_TRUE(CFStringGetCString(string.get(), buffer.data(), 6, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer.data(), "abc\xC3\xA9");
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), 0, kCFStringEncodingUTF8));
  EXPECT_TRUE(CFStringGetCString(CFSTR(""), buffer.data(), 1, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer.data(), "");
}

TEST(StringGetMaximumSize, IsThreeBytesPerUnit) {
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF8), 30);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(std::numeric_limits<CFIndex>::max(), kCFStringEncodingUTF8), -1);
}

// --- UTF-16BE

TEST(Utf16BigEndian, HasTwoBytesPerUnitAndNoMark) {
  EXPECT_THAT(convert(makeString("A\xC3\xA9\xF0\x9F\x98\x80").get(), Encoding::kUtf16BigEndian),
              Optional(ElementsAre(0x00, 0x41, 0x00, 0xE9, 0xD8, 0x3D, 0xDE, 0x00)));
  EXPECT_THAT(convert(CFSTR(""), Encoding::kUtf16BigEndian), Optional(ElementsAre()));
  EXPECT_THAT(convert(makeString(std::string("a\0b", 3)).get(), Encoding::kUtf16BigEndian),
              Optional(ElementsAre(0, 'a', 0, 0, 0, 'b')));
}

TEST(Utf16BigEndian, KeepsAByteOrderMarkInTheText) {
  const String marked = makePart(makeString(std::string("x") + kMark + "a").get(), 1, 2);
  EXPECT_THAT(convert(marked.get(), Encoding::kUtf16BigEndian), Optional(ElementsAre(0xFE, 0xFF, 0x00, 'a')));
  const String reversed = makePart(makeString("x\xEF\xBF\xBE").get(), 1, 1);
  EXPECT_THAT(convert(reversed.get(), Encoding::kUtf16BigEndian), Optional(ElementsAre(0xFF, 0xFE)));
}

TEST(Utf16BigEndian, KeepsALoneSurrogate) {
  const String faces = makeString(std::string("a") + kFace + kFace);
  EXPECT_THAT(convert(makePart(faces.get(), 0, 2).get(), Encoding::kUtf16BigEndian),
              Optional(ElementsAre(0x00, 'a', 0xD8, 0x3D)));
  EXPECT_THAT(convert(makePart(faces.get(), 2, 2).get(), Encoding::kUtf16BigEndian),
              Optional(ElementsAre(0xDE, 0x00, 0xD8, 0x3D)));
}

// --- ASCII and Mac Roman

TEST(Ascii, LeavesEachOfItsCharactersUnchanged) {
  for (unsigned character = 0; character < 0x80; ++character) {
    EXPECT_THAT(convert(makeString(std::string(1, static_cast<char>(character))).get(), Encoding::kLossyAscii),
                Optional(ElementsAre(character)));
  }
}

TEST(Ascii, ConvertsConstantStrings) {
  EXPECT_EQ(convert(CFSTR("abc"), Encoding::kLossyAscii), bytesOf("abc"));
  EXPECT_EQ(convert(CFSTR("abc"), Encoding::kLossyMacRoman), bytesOf("abc"));
}

TEST(Ascii, ReplacesLatin1ByLettersAndSigns) {
  const auto ascii = [](const char* text) { return convert(makeString(text).get(), Encoding::kLossyAscii); };
  EXPECT_EQ(ascii("\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF"),
            bytesOf(" !cL$Y|(C)a<<-(R)"));
  EXPECT_EQ(ascii("\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE"),
            bytesOf("+-231o>>1/41/23/4"));
  EXPECT_EQ(ascii("\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF"),
            bytesOf("AAAAAAAECEEEEIIII"));
  EXPECT_EQ(ascii("\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00DF"),
            bytesOf("THNOOOOOXOUUUUYths"));
  EXPECT_EQ(ascii("\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF"),
            bytesOf("aaaaaaaeceeeeiiii"));
  EXPECT_EQ(ascii("\u00F0\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u00FD\u00FE\u00FF"),
            bytesOf("THnooooo/ouuuuythy"));
}

TEST(Ascii, ReplacesCharactersThatDecomposeIntoIts) {
  EXPECT_THAT(convert(makeString("\u0150\u1EC7\u01E2\u212A\u212B\u0387\u2260").get(), Encoding::kLossyAscii),
              Optional(ElementsAre('O', 'e', 'A', 'E', 'K', 'A', '=')));
}

TEST(Ascii, ReplacesSpacesLineEndsAndEllipses) {
  EXPECT_EQ(convert(makeString("a\u2003b\u3000c\u2028d\u2029e\u2026").get(), Encoding::kLossyAscii),
            bytesOf("a b c\nd\ne..."));
}

TEST(Ascii, ReplacesOtherCharactersByAQuestionMark) {
  EXPECT_EQ(
      convert(makeString(std::string("a\u65E5\u0301") + kFace + "b\u200D\uFE0F\u2019").get(), Encoding::kLossyAscii),
      bytesOf("a\?\?\?b\?\?\?"));
}

TEST(Ascii, ReplacesALoneSurrogateByAQuestionMark) {
  const String faces = makeString(std::string("a") + kFace + kFace);
  EXPECT_EQ(convert(makePart(faces.get(), 0, 2).get(), Encoding::kLossyAscii), bytesOf("a?"));
  EXPECT_EQ(convert(makePart(faces.get(), 2, 2).get(), Encoding::kLossyAscii), bytesOf("\?\?"));
  EXPECT_EQ(convert(makePart(faces.get(), 2, 3).get(), Encoding::kLossyAscii), bytesOf("\?\?"));
}

/// The characters from 0x80 on.
constexpr std::u16string_view kMacRoman =
    u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"
    u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"
    u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
    u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"
    u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"
    u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
    u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"
    u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";
static_assert(kMacRoman.size() == 0x80);

std::string utf8Of(char16_t unit) {
  std::string bytes;
  if (unit < 0x80) {
    return {static_cast<char>(unit)};
  }
  if (unit < 0x800) {
    bytes = {static_cast<char>(0xC0 | unit >> 6)};
  } else {
    bytes = {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F))};
  }
  return bytes + static_cast<char>(0x80 | (unit & 0x3F));
}

TEST(MacRoman, LeavesEachOfItsCharactersUnchanged) {
  for (unsigned byte = 0; byte < 0x100; ++byte) {
    const char16_t unit = byte < 0x80 ? static_cast<char16_t>(byte) : kMacRoman[byte - 0x80];
    EXPECT_THAT(convert(makeString(utf8Of(unit)).get(), Encoding::kLossyMacRoman), Optional(ElementsAre(byte))) << byte;
  }
}

TEST(MacRoman, ReplacesOtherCharactersByAQuestionMark) {
  EXPECT_EQ(
      convert(makeString(std::string("a\u65E5\u0150\u00D0\u0080\u2126") + kFace + "b").get(), Encoding::kLossyMacRoman),
      bytesOf("a\?\?\?\?\?\?b"));
}

TEST(MacRoman, ReplacesCombiningMarksByAQuestionMark) {
  EXPECT_EQ(convert(makeString("e\u0301\u0302").get(), Encoding::kLossyMacRoman), bytesOf("e\?\?"));
}

TEST(MacRoman, DropsIgnorableCharacters) {
  EXPECT_EQ(convert(makeString("a\u00AD\u034F\u115F\u180B\u200B\u200D\u200E\u202E\u2060\u206F\u3164\uFE00\uFE0F\uFEFF"
                               "\uFFA0\uFFF8b\U0001D173\U000E0001\U000E0FFF")
                        .get(),
                    Encoding::kLossyMacRoman),
            bytesOf("ab"));
}

TEST(MacRoman, ReplacesALoneSurrogateByAQuestionMark) {
  const String faces = makeString(std::string("a") + kFace + kFace);
  EXPECT_EQ(convert(makePart(faces.get(), 0, 2).get(), Encoding::kLossyMacRoman), bytesOf("a?"));
  EXPECT_EQ(convert(makePart(faces.get(), 2, 2).get(), Encoding::kLossyMacRoman), bytesOf("\?\?"));
}

// --- searching

bool finds(const char* text, const char* part) { return contains(makeString(text).get(), makeString(part).get()); }

TEST(Search, IsCaseSensitive) {
  EXPECT_TRUE(finds("Display", "Display"));
  EXPECT_TRUE(finds("Display", "play"));
  EXPECT_TRUE(finds("Display", "D"));
  EXPECT_FALSE(finds("Display", "display"));
  EXPECT_FALSE(finds("play", "Display"));
  EXPECT_FALSE(finds("\u00C9t\u00E9", "\u00E9t"));
  EXPECT_TRUE(finds("aab", "ab"));
}

TEST(Search, FindsNoEmptyPart) {
  EXPECT_FALSE(finds("Display", ""));
  EXPECT_FALSE(finds("\u00E9", ""));
  EXPECT_FALSE(finds("", ""));
  EXPECT_FALSE(finds("", "a"));
  EXPECT_FALSE(finds("", "\u0301"));
}

TEST(Search, FindsCharactersOfAllWidths) {
  EXPECT_TRUE(finds("\u65E5\u672C\U0001F600", "\U0001F600"));
  EXPECT_TRUE(finds("\u65E5\u672C\U0001F600", "\u672C\U0001F600"));
  EXPECT_FALSE(finds("\u65E5\u672C", "\u8A9E"));
  EXPECT_FALSE(finds("\U0001F600", "\U0001F601"));
}

TEST(Search, FindsCanonicallyEquivalentText) {
  EXPECT_TRUE(finds("caf\u00E9", "cafe\u0301"));
  EXPECT_TRUE(finds("cafe\u0301", "caf\u00E9"));
  EXPECT_TRUE(finds("cafe\u0301s", "\u00E9s"));
  EXPECT_TRUE(finds("\u1EC7", "e\u0323\u0302"));
  EXPECT_TRUE(finds("e\u0302\u0323", "\u1EC7"));
  EXPECT_TRUE(finds("\u212B", "\u00C5"));
  EXPECT_FALSE(finds("\uFB01", "fi"));
}

TEST(Search, FindsNoLetterWithoutItsMarks) {
  EXPECT_FALSE(finds("e\u0301", "e"));
  EXPECT_FALSE(finds("\u00E9", "e"));
  EXPECT_FALSE(finds("cafe\u0301s", "cafe"));
  EXPECT_FALSE(finds("e\u0301\u0302", "e\u0301"));
  EXPECT_FALSE(finds("\u1EC7", "\u00EA"));
  EXPECT_FALSE(finds("a\uFE0F", "a"));
  EXPECT_FALSE(finds("a\u200Cb", "a"));
  EXPECT_TRUE(finds("a\u200Db", "a"));
  EXPECT_TRUE(finds("a\u200Db", "a\u200D"));
  EXPECT_TRUE(finds("\u00E9\u0302", "e\u0301\u0302"));
  EXPECT_FALSE(finds("\u00E9\u0302", "\u00E9"));
  EXPECT_TRUE(finds("e\u0301e", "e"));
}

TEST(Search, FindsAPartThatBeginsWithACombiningMark) {
  EXPECT_TRUE(finds("e\u0301", "\u0301"));
  EXPECT_TRUE(finds("e\u0301x", "\u0301x"));
  EXPECT_TRUE(finds("\u0301", "\u0301"));
  EXPECT_FALSE(finds("e\u0301", "\u0302"));
  EXPECT_FALSE(finds("Display", "\u0301"));
  EXPECT_FALSE(finds("Display", "\u0301x"));
  EXPECT_FALSE(finds("\u00E9", "\u0301"));
  EXPECT_TRUE(finds("\u00C5\u05B0", "\u05B0"));  // which canonical order puts before the ring
}

TEST(Search, FindsAPartThatBeginsWithAVariationSelectorOrAJoiner) {
  EXPECT_TRUE(finds("\u2764\uFE0F", "\uFE0F"));
  EXPECT_TRUE(finds("\u2764\uFE0Fx", "\uFE0Fx"));
  EXPECT_TRUE(finds("a\u200Db", "\u200Db"));
  EXPECT_FALSE(finds("Display", "\uFE0F"));
  EXPECT_FALSE(finds("Display", "\u200D"));
}

TEST(Search, FindsNoPartOfAJoinedSequenceThatEndsWithTheJoiner) {
  EXPECT_TRUE(finds("\U0001F468\u200D\U0001F469", "\U0001F468"));
  EXPECT_FALSE(finds("\U0001F468\u200D\U0001F469", "\U0001F468\u200D"));
  EXPECT_TRUE(finds("\U0001F468\u200D\U0001F469", "\U0001F468\u200D\U0001F469"));
  EXPECT_TRUE(finds("\U0001F468\u200D\U0001F469", "\U0001F469"));
  EXPECT_FALSE(finds("\U0001F44D\U0001F3FD", "\U0001F44D\U0001F3FE"));
  EXPECT_TRUE(finds("\u00EA\u200D\U0001F600", "\u200D"));
  EXPECT_FALSE(finds("\U0001F468\u0302\u200D\U0001F469", "\u0302\u200D"));
  EXPECT_FALSE(finds("a\u200D\u200D", "a\u200D"));
}

TEST(Search, FindsNoPartOfAHangulSyllable) {
  EXPECT_TRUE(finds("\uAC01", "\u1100\u1161\u11A8"));
  EXPECT_TRUE(finds("\u1100\u1161\u11A8", "\uAC01"));
  EXPECT_FALSE(finds("\uAC01", "\uAC00"));
  EXPECT_FALSE(finds("\u1100\u1161\u11A8", "\u1100\u1161"));
  EXPECT_FALSE(finds("\uAC00 ", "\u1100"));
  EXPECT_FALSE(finds("\u1161\u200D", "\u1161"));
}

TEST(Search, FindsNoConsonantWithoutItsConjunct) {
  EXPECT_FALSE(finds("\u0915\u094D\u0937", "\u0915"));
  EXPECT_FALSE(finds("\u0915\u094D\u0937", "\u0915\u094D"));
  EXPECT_TRUE(finds("\u0915\u094D\u0937", "\u0937"));
  EXPECT_FALSE(finds("\u0915\u094D\u200D\u0937", "\u200D"));
  EXPECT_FALSE(finds("\u0915\u094D\u093E", "\u0915\u094D"));
  EXPECT_TRUE(finds("\u0915\u093E", "\u0915"));
  EXPECT_FALSE(finds("\u0915\u093E\u094D\u0937", "\u0915\u093E\u094D"));
  EXPECT_TRUE(finds("\u094D\u0915", "\u094D"));
  EXPECT_TRUE(finds("\U0001F600\uFE0F\u094D\u0915", "\uFE0F\u094D"));
}

TEST(Search, FindsHalfOfASurrogatePair) {
  const String face = makeString(std::string("a") + kFace);
  EXPECT_TRUE(contains(face.get(), makePart(face.get(), 1, 1).get()));
  EXPECT_TRUE(contains(face.get(), makePart(face.get(), 2, 1).get()));
}

}  // namespace
}  // namespace conformance
