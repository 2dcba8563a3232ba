// UTF-8 to UTF-16 and back, against ICU.
#include <gmock/gmock.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "strings/utils.h"
#include "support/icu_text.h"

namespace {

using testing::ElementsAre;

constexpr char32_t kLastCodePoint = 0x10FFFF;

bool isSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

std::wstring wide(const std::u16string& units) { return {units.begin(), units.end()}; }

/// Nothing when the function threw its range error; another exception passes.
std::optional<std::wstring> toUtf16(const std::string& utf8) {
  try {
    return Utils::utf8_to_utf16(utf8);
  } catch (const std::range_error& error) {
    EXPECT_STREQ(error.what(), "wstring_convert: from_bytes error");
    return std::nullopt;
  }
}

std::optional<std::string> toUtf8(const std::wstring& utf16) {
  try {
    return Utils::utf16_to_utf8(utf16);
  } catch (const std::range_error& error) {
    EXPECT_STREQ(error.what(), "wstring_convert: to_bytes error");
    return std::nullopt;
  }
}

// --- ICU's opinion: nothing when the text is malformed

std::optional<std::wstring> toUtf16ByIcu(const std::string& utf8) {
  const auto units = support::utf16ByIcu(utf8);
  return units ? std::optional(wide(*units)) : std::nullopt;
}

std::optional<std::string> toUtf8ByIcu(const std::u16string& utf16) { return support::utf8ByIcu(utf16); }

std::u16string unitsOf(char32_t code) {
  if (code < 0x10000) {
    return {static_cast<char16_t>(code)};
  }
  return {static_cast<char16_t>(U16_LEAD(code)), static_cast<char16_t>(U16_TRAIL(code))};
}

testing::AssertionResult agreesOnBytes(const std::string& utf8) {
  return toUtf16(utf8) == toUtf16ByIcu(utf8) ? testing::AssertionSuccess()
                                             : testing::AssertionFailure() << testing::PrintToString(utf8);
}

testing::AssertionResult agreesOnUnits(const std::u16string& utf16) {
  return toUtf8(wide(utf16)) == toUtf8ByIcu(utf16)
             ? testing::AssertionSuccess()
             : testing::AssertionFailure() << testing::PrintToString(std::vector<int>(utf16.begin(), utf16.end()));
}

std::string bytes(std::initializer_list<unsigned> values) {
  std::string result;
  for (const unsigned value : values) {
    result.push_back(static_cast<char>(value));
  }
  return result;
}

// --- single characters

TEST(Conversion, RoundTripsEveryCodePoint) {
  for (char32_t code = 0; code <= kLastCodePoint; ++code) {
    if (isSurrogate(code)) {
      continue;
    }
    const std::u16string units = unitsOf(code);
    const std::optional<std::string> utf8 = toUtf8ByIcu(units);
    ASSERT_TRUE(utf8) << static_cast<std::uint32_t>(code);
    ASSERT_EQ(toUtf8(wide(units)), utf8) << static_cast<std::uint32_t>(code);
    ASSERT_EQ(toUtf16(*utf8), wide(units)) << static_cast<std::uint32_t>(code);
  }
}

TEST(Conversion, KeepsTheEmptyText) {
  EXPECT_EQ(Utils::utf8_to_utf16(""), L"");
  EXPECT_EQ(Utils::utf16_to_utf8(L""), "");
}

TEST(Conversion, KeepsNuls) {
  EXPECT_EQ(Utils::utf8_to_utf16(std::string("a\0b\0", 4)), std::wstring(L"a\0b\0", 4));
  EXPECT_EQ(Utils::utf16_to_utf8(std::wstring(L"a\0b\0", 4)), std::string("a\0b\0", 4));
}

TEST(Conversion, KeepsAByteOrderMark) {
  EXPECT_THAT(Utils::utf8_to_utf16("\xEF\xBB\xBF"
                                   "A"),
              ElementsAre(0xFEFF, 'A'));
  EXPECT_EQ(Utils::utf16_to_utf8({0xFEFF, 'A'}),
            "\xEF\xBB\xBF"
            "A");
}

TEST(Conversion, UsesTwoElementsAboveFFFF) {
  EXPECT_THAT(Utils::utf8_to_utf16("A\xF0\x9F\x98\x80"), ElementsAre(0x41, 0xD83D, 0xDE00));
  EXPECT_EQ(Utils::utf16_to_utf8({0x41, 0xD83D, 0xDE00}), "A\xF0\x9F\x98\x80");
}

// --- malformed UTF-8

TEST(FromUtf8, AgreesOnEveryByteAndEveryTwoBytes) {
  for (unsigned first = 0; first < 0x100; ++first) {
    ASSERT_TRUE(agreesOnBytes(bytes({first})));
    for (unsigned second = 0; second < 0x100; ++second) {
      ASSERT_TRUE(agreesOnBytes(bytes({first, second})));
    }
  }
}

// In parts, because refusals are slow; the parameter is the first of sixteen first bytes.
class FromUtf8Part : public testing::TestWithParam<unsigned> {};

TEST_P(FromUtf8Part, AgreesOnEveryThreeBytes) {
  for (unsigned first = GetParam(); first < GetParam() + 16; ++first) {
    for (unsigned second = 0; second < 0x100; ++second) {
      for (unsigned third = 0; third < 0x100; ++third) {
        ASSERT_TRUE(agreesOnBytes(bytes({first, second, third})));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(NotAscii, FromUtf8Part, testing::Range(0x80U, 0x100U, 16U));

TEST(FromUtf8, AgreesOnFourBytesAtEveryBound) {
  constexpr unsigned kLast[] = {0x00, 0x7F, 0x80, 0xBF, 0xC0};
  for (unsigned first = 0xE0; first < 0x100; ++first) {
    for (unsigned second = 0; second < 0x100; ++second) {
      for (const unsigned third : kLast) {
        for (const unsigned fourth : kLast) {
          ASSERT_TRUE(agreesOnBytes(bytes({first, second, third, fourth})));
        }
      }
    }
  }
}

TEST(FromUtf8, RejectsFiveAndSixByteForms) {
  EXPECT_EQ(toUtf16("\xF8\x88\x80\x80\x80"), std::nullopt);
  EXPECT_EQ(toUtf16("\xFC\x84\x80\x80\x80\x80"), std::nullopt);
}

TEST(FromUtf8, RejectsEveryTruncatedCodePoint) {
  constexpr char32_t kStep = 0x40;  // these have all beginnings: code points between them differ in the last byte only
  for (char32_t code = 0x80; code <= kLastCodePoint; code += kStep) {
    if (isSurrogate(code)) {
      continue;
    }
    const std::string utf8 = *toUtf8ByIcu(unitsOf(code));
    for (std::size_t length = 1; length < utf8.size(); ++length) {
      ASSERT_EQ(toUtf16(utf8.substr(0, length)), std::nullopt) << static_cast<std::uint32_t>(code);
    }
  }
}

TEST(FromUtf8, RejectsTruncationAtAnyPlace) {
  const std::string ascii = "0123456789abcdef";
  for (const std::string& part : {std::string("\xC3"), std::string("\xE2\x82"), std::string("\xF0\x9F\x98")}) {
    for (std::size_t position = 0; position <= ascii.size(); ++position) {
      std::string text = ascii;
      text.insert(position, part);
      EXPECT_EQ(toUtf16(text), std::nullopt) << position;
    }
  }
}

TEST(FromUtf8, ThrowsTheStandardConvertersMessage) {
  for (const char* const text : {"\xC0", "\x80", "\xC3", "\xED\xA0\x80", "\xF4\x90\x80\x80", "A\xE2\x82"}) {
    EXPECT_THAT([text] { (void)Utils::utf8_to_utf16(text); },
                testing::ThrowsMessage<std::range_error>("wstring_convert: from_bytes error"));
  }
}

// --- malformed UTF-16

TEST(ToUtf8, AgreesOnEveryUnitAlone) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    ASSERT_TRUE(agreesOnUnits({static_cast<char16_t>(unit)}));
  }
}

TEST(ToUtf8, AgreesOnEveryHighSurrogateBeforeEveryKindOfUnit) {
  constexpr char16_t kNext[] = {0x0000, 0x0041, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDE00, 0xDFFF, 0xE000, 0xFFFF};
  for (unsigned high = 0xD800; high < 0xE000; ++high) {
    for (const char16_t next : kNext) {
      ASSERT_TRUE(agreesOnUnits({static_cast<char16_t>(high), next}));
      ASSERT_TRUE(agreesOnUnits({u'A', static_cast<char16_t>(high), next, u'B'}));
    }
  }
}

TEST(ToUtf8, RejectsElementsAboveFFFF) {
  for (const std::uint32_t element :
       {0x10000U, 0x1F600U, 0x10FFFFU, 0x110000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    const auto wide_element = static_cast<wchar_t>(element);
    EXPECT_EQ(toUtf8({wide_element}), std::nullopt) << element;
    EXPECT_EQ(toUtf8({L'A', wide_element}), std::nullopt) << element;
    EXPECT_EQ(toUtf8({0xD83D, wide_element}), std::nullopt) << element;
  }
}

TEST(ToUtf8, ThrowsTheStandardConvertersMessage) {
  for (const std::wstring& text : {std::wstring{0xDC00}, std::wstring{0xD83D}, std::wstring{0xD83D, 'A'}}) {
    EXPECT_THAT([&text] { (void)Utils::utf16_to_utf8(text); },
                testing::ThrowsMessage<std::range_error>("wstring_convert: to_bytes error"));
  }
}

// --- long texts

TEST(Conversion, AgreesOnLongRandomTexts) {
  std::mt19937 random(20200229);
  for (int round = 0; round < 200; ++round) {
    std::u16string units;
    for (int i = 0; i < 500; ++i) {
      const char32_t limits[] = {0x80, 0x80, 0x800, 0xD800, 0x110000};
      const char32_t code = random() % limits[random() % 5];
      units += isSurrogate(code) ? u"a" : unitsOf(code);
    }
    const std::optional<std::string> utf8 = toUtf8ByIcu(units);
    ASSERT_TRUE(utf8);
    ASSERT_EQ(toUtf8(wide(units)), utf8);
    ASSERT_EQ(toUtf16(*utf8), wide(units));
  }
}

TEST(Conversion, AgreesOnRandomBytes) {
  std::mt19937 random(20200301);
  for (int round = 0; round < 20000; ++round) {
    std::string text(random() % 24, 'a');
    for (int i = 0; i < 3 && !text.empty(); ++i) {
      text[random() % text.size()] = static_cast<char>(random());
    }
    ASSERT_TRUE(agreesOnBytes(text));
  }
}

// --- bytes

TEST(AppendBytes, AddsAtTheEnd) {
  std::vector<unsigned char> target = {1, 2};
  unsigned char added[] = {3, 0, 5};
  Utils::appendBytes(target, added, 3);
  EXPECT_THAT(target, ElementsAre(1, 2, 3, 0, 5));
  Utils::appendBytes(target, added, 1);
  EXPECT_THAT(target, ElementsAre(1, 2, 3, 0, 5, 3));
}

TEST(AppendBytes, ChangesNothingForNoBytes) {
  std::vector<unsigned char> target = {1};
  unsigned char added[] = {3};
  Utils::appendBytes(target, added, 0);
  Utils::appendBytes(target, nullptr, 0);
  EXPECT_THAT(target, ElementsAre(1));
}

TEST(AppendBytes, FillsAnEmptyVector) {
  std::vector<unsigned char> target;
  std::vector<unsigned char> added(100000, 7);
  Utils::appendBytes(target, added.data(), added.size());
  EXPECT_EQ(target, added);
}

}  // namespace
