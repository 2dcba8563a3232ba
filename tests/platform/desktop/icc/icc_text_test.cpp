#include "desktop/icc/icc_text.h"

#include <gmock/gmock.h>
#include <lcms2.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "support/icc_maker.h"
#include "support/icu_text.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::IccProfile;
using platform::desktop::iccSignature;
using platform::desktop::kMaxIccTextSize;
using platform::desktop::Language;
using platform::desktop::readIccText;
using support::bigEndian16;
using support::bigEndian32;
using support::descElement;
using support::mlucElement;
using support::textElement;
using support::utf16Bytes;
using testing::Eq;
using testing::Optional;

const Language kEnglish = {"en", "US"};

std::optional<std::string> textOf(const std::string& element, const Language& wanted = kEnglish) {
  const support::TemporaryFolder folder;
  const auto profile = IccProfile::open(folder.write("a.icc", support::IccMaker().tag("desc", element).bytes()));
  return readIccText(*profile, profile->find(iccSignature("desc")).value(), wanted);
}

/// What lcms2 makes of the same element as a profile's description, in UTF-8.
std::string lcmsTextOf(const std::string& element, const char* language = "en", const char* country = "US") {
  const std::string bytes = support::IccMaker().tag("desc", element).bytes();
  const cmsHPROFILE profile = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
  const cmsUInt32Number size = cmsGetProfileInfo(profile, cmsInfoDescription, language, country, nullptr, 0);
  std::wstring wide(size / sizeof(wchar_t), L'\0');
  cmsGetProfileInfo(profile, cmsInfoDescription, language, country, wide.data(), size);
  cmsCloseProfile(profile);
  const std::wstring text = wide.substr(0, wide.find(L'\0'));
  return support::utf8ByIcu(std::u16string(text.begin(), text.end())).value_or("no text");
}

// --- desc

TEST(IccText, ReturnsTheAsciiPartOfADesc) {
  const std::string element = descElement("Dell U2720Q", u"Something else", 0, "Another");
  EXPECT_THAT(textOf(element), Optional(Eq("Dell U2720Q")));
  EXPECT_EQ(lcmsTextOf(element), "Dell U2720Q");
}

TEST(IccText, KeepsSpacesTabsAndNewlinesOfADesc) {
  EXPECT_THAT(textOf(descElement("  \t two\nlines ")), Optional(Eq("  \t two\nlines ")));
}

TEST(IccText, EndsADescAtTheFirstNul) {
  const std::string element = descElement(std::string("before\0after", 12));
  EXPECT_THAT(textOf(element), Optional(Eq("before")));
  EXPECT_EQ(lcmsTextOf(element), "before");
}

TEST(IccText, ReturnsAnEmptyDesc) {
  EXPECT_THAT(textOf(descElement("")), Optional(Eq("")));
  EXPECT_THAT(textOf("desc" + bigEndian32(0) + bigEndian32(0)), Optional(Eq("")));
}

TEST(IccText, ReturnsADescWithoutTerminatorAndOtherParts) {
  EXPECT_THAT(textOf("desc" + bigEndian32(0) + bigEndian32(3) + "abc"), Optional(Eq("abc")));
}

TEST(IccText, ReturnsTheUnicodePartOfADescWithoutAscii) {
  EXPECT_THAT(textOf(descElement("", u"Büro-Profil 色", 0, "mac")), Optional(Eq("Büro-Profil 色")));
}

TEST(IccText, ReturnsTheUnicodePartForAnAsciiPartThatIsNotAscii) {
  EXPECT_THAT(textOf(descElement("B\xFCro", u"Büro")), Optional(Eq("Büro")));
}

TEST(IccText, ReturnsTheScriptPartOfADescWithoutTheOthers) {
  EXPECT_THAT(textOf(descElement("", u"", 0, "B\x9Fro \xA9")), Optional(Eq("Büro ©")));
  EXPECT_THAT(textOf(descElement("", u"", 1, "\x90\x46")), Optional(Eq("色")));
  EXPECT_THAT(textOf(descElement("", u"", 7, "\x96\xE2\xE5\xF2")), Optional(Eq("Цвет")));
}

TEST(IccText, ReplacesWhatAScriptDoesNotDefine) {
  EXPECT_THAT(textOf(descElement("", u"", 1,
                                 "a\xFF"
                                 "b\x90")),
              Optional(Eq("a\uFFFDb\uFFFD")));
  EXPECT_THAT(textOf(descElement("", u"", 4711,
                                 "a\x9F"
                                 "b")),
              Optional(Eq("a\uFFFDb")));
}

TEST(IccText, ReadsAtMostSixtySevenBytesOfAScriptPart) {
  std::string element = descElement("", u"", 0, std::string(67, 'x'));
  element[element.size() - 68] = static_cast<char>(255);
  EXPECT_THAT(textOf(element), Optional(Eq(std::string(67, 'x'))));
}

TEST(IccText, ReadsOtherBytesOfADescAsUtf8ElseLatin1) {
  EXPECT_THAT(textOf(descElement("Büro")), Optional(Eq("Büro")));
  EXPECT_THAT(textOf(descElement("B\xFCro")), Optional(Eq("Büro")));
  EXPECT_THAT(textOf(descElement("overlong \xC0\x80")), Optional(Eq("overlong À\xC2\x80")));
}

/// Bytes at the bounds of what each place of a UTF-8 sequence may hold.
TEST(IccText, TakesForUtf8WhatIcuTakes) {
  const std::string leads = "a\x80\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF4\xF5";
  const std::string others = "a\x80\x8F\x90\x9F\xA0\xBF\xC0";
  const auto expected = [](const std::string& bytes) {
    std::u16string latin1;
    std::transform(bytes.begin(), bytes.end(), std::back_inserter(latin1), [](unsigned char byte) { return byte; });
    return support::utf16ByIcu(bytes) ? bytes : support::utf8ByIcu(latin1);
  };
  for (const char lead : leads) {
    for (const char second : others) {
      for (const std::string rest : {"", "\x80", "\xBF\xBF", "\x80\x80\x80"}) {
        const std::string bytes = std::string{lead, second} + rest;
        ASSERT_EQ(textOf(textElement(bytes)), expected(bytes)) << testing::PrintToString(bytes);
      }
    }
  }
}

TEST(IccText, ReturnsNothingForADescLongerThanTheElement) {
  const std::string start = "desc" + bigEndian32(0);
  EXPECT_EQ(textOf(start), std::nullopt);
  EXPECT_EQ(textOf(start + bigEndian32(4) + "abc"), std::nullopt);
  EXPECT_EQ(textOf(start + bigEndian32(0xFFFFFFFF) + "abc"), std::nullopt);
}

TEST(IccText, IgnoresOtherPartsLongerThanTheElement) {
  const std::string empty_ascii = "desc" + bigEndian32(0) + bigEndian32(1) + std::string(1, '\0');
  for (const std::uint32_t units : {1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_THAT(textOf(empty_ascii + bigEndian32(0) + bigEndian32(units)), Optional(Eq(""))) << units;
  }
  EXPECT_THAT(textOf(empty_ascii + bigEndian32(0) + bigEndian32(0) + bigEndian16(0) + '\x20' + "abc"),
              Optional(Eq("")));
}

// --- mluc

const std::string kManyLanguages = mlucElement({{"frFR", u"Profil"},
                                                {"deDE", u"Farbprofil"},
                                                {"deAT", u"Farbprofil, eh"},
                                                {"enGB", u"Colour profile"},
                                                {"enUS", u"Color profile"}});

TEST(IccText, ReturnsTheMlucRecordOfTheUsersCountry) {
  EXPECT_THAT(textOf(kManyLanguages, {"de", "AT"}), Optional(Eq("Farbprofil, eh")));
  EXPECT_THAT(textOf(kManyLanguages, {"en", "US"}), Optional(Eq("Color profile")));
  EXPECT_EQ(lcmsTextOf(kManyLanguages, "de", "AT"), "Farbprofil, eh");
}

TEST(IccText, ReturnsTheFirstMlucRecordOfTheUsersLanguage) {
  EXPECT_THAT(textOf(kManyLanguages, {"de", "CH"}), Optional(Eq("Farbprofil")));
  EXPECT_THAT(textOf(kManyLanguages, {"fr", ""}), Optional(Eq("Profil")));
  EXPECT_EQ(lcmsTextOf(kManyLanguages, "de", "CH"), "Farbprofil");
}

TEST(IccText, ReturnsTheEnglishMlucRecordForAMissingLanguage) {
  EXPECT_THAT(textOf(kManyLanguages, {"ja", "JP"}), Optional(Eq("Colour profile")));
}

TEST(IccText, ReturnsTheFirstMlucRecordWithoutEnglish) {
  const std::string element = mlucElement({{"frFR", u"Profil"}, {"deDE", u"Farbprofil"}});
  EXPECT_THAT(textOf(element, {"ja", "JP"}), Optional(Eq("Profil")));
  EXPECT_EQ(lcmsTextOf(element, "ja", "JP"), "Profil");
}

TEST(IccText, AcceptsMlucCodesInUpperCaseAndWithoutCountry) {
  const std::string element = mlucElement({{"enUS", u"Color"}, {std::string("DE\0\0", 4), u"Farbe"}});
  EXPECT_THAT(textOf(element, {"de", "DE"}), Optional(Eq("Farbe")));
}

TEST(IccText, DecodesSurrogatePairsOfAnMluc) {
  EXPECT_THAT(textOf(mlucElement({{"enUS", u"\U0001F600 \U0010FFFF \U00010000"}})),
              Optional(Eq("\U0001F600 \U0010FFFF \U00010000")));
}

TEST(IccText, ReplacesUnpairedSurrogatesOfAnMluc) {
  using namespace std::string_literals;
  EXPECT_THAT(textOf(mlucElement({{"enUS", u"a\xD83D"s}})), Optional(Eq("a\uFFFD")));
  EXPECT_THAT(textOf(mlucElement({{"enUS",
                                   u"\xD83D"
                                   u"b"s}})),
              Optional(Eq("\uFFFDb")));
  EXPECT_THAT(textOf(mlucElement({{"enUS",
                                   u"\xDE00"
                                   u"b"s}})),
              Optional(Eq("\uFFFDb")));
  EXPECT_THAT(textOf(mlucElement({{"enUS", u"\xD83D\xD83D\xDE00"s}})), Optional(Eq("\uFFFD\U0001F600")));
}

TEST(IccText, EndsAnMlucAtTheFirstNul) {
  const std::string element = mlucElement({{"enUS", std::u16string(u"before\0after", 12)}});
  EXPECT_THAT(textOf(element), Optional(Eq("before")));
  EXPECT_EQ(lcmsTextOf(element), "before");
}

TEST(IccText, LeavesOutTheByteOrderMarkOfAnMluc) {
  EXPECT_THAT(textOf(mlucElement({{"enUS", u"\uFEFFtext"}})), Optional(Eq("text")));
}

TEST(IccText, IgnoresMlucRecordsThatReachOutOfTheElement) {
  const auto record = [](const char* locale, std::uint32_t size, std::uint32_t offset) {
    return locale + bigEndian32(size) + bigEndian32(offset);
  };
  const std::string element = "mluc" + bigEndian32(0) + bigEndian32(4) + bigEndian32(12) +
                              record("enUS", 4, 0xFFFFFFFE) + record("enUS", 0xFFFFFFFF, 64) + record("enUS", 4, 67) +
                              record("frFR", 4, 64) + utf16Bytes(u"ok");
  EXPECT_THAT(textOf(element), Optional(Eq("ok")));
}

TEST(IccText, ReturnsNothingForAMalformedMluc) {
  const std::string start = "mluc" + bigEndian32(0);
  EXPECT_EQ(textOf(start), std::nullopt);
  EXPECT_EQ(textOf(start + bigEndian32(0) + bigEndian32(12)), std::nullopt);
  EXPECT_EQ(textOf(start + bigEndian32(1) + bigEndian32(12)), std::nullopt);
  EXPECT_EQ(textOf(start + bigEndian32(0xFFFFFFFF) + bigEndian32(12) + "enUS"), std::nullopt);
  EXPECT_EQ(textOf(start + bigEndian32(1) + bigEndian32(16) + "enUS" + bigEndian32(2) + bigEndian32(28) + "\0a"),
            std::nullopt);
}

TEST(IccText, IgnoresMlucRecordsAfterTheElement) {
  std::string element = mlucElement({{"enUS", u"text"}});
  element.replace(8, 4, bigEndian32(0xFFFFFFFF));
  EXPECT_THAT(textOf(element), Optional(Eq("text")));
}

// --- text and other types

TEST(IccText, ReturnsTheBytesOfAText) {
  EXPECT_THAT(textOf(textElement("Plain text")), Optional(Eq("Plain text")));
  EXPECT_EQ(lcmsTextOf(textElement("Plain text")), "Plain text");
  EXPECT_THAT(textOf("text" + bigEndian32(0)), Optional(Eq("")));
  EXPECT_EQ(textOf("text" + bigEndian16(0)), std::nullopt);
}

TEST(IccText, ReturnsNothingForAnotherType) {
  EXPECT_EQ(textOf("sig " + bigEndian32(0) + "abcd"), std::nullopt);
  EXPECT_EQ(textOf("DESC" + bigEndian32(0) + bigEndian32(3) + "abc"), std::nullopt);
  EXPECT_EQ(textOf("des"), std::nullopt);
  EXPECT_EQ(textOf(""), std::nullopt);
}

// --- long texts

TEST(IccText, ReadsSixteenMebibytes) {
  const std::string ascii(16 << 20, 'x');
  EXPECT_TRUE(textOf(descElement(ascii)) == ascii);
  std::string latin1 = ascii;
  latin1.back() = '\xFC';
  EXPECT_TRUE(textOf(descElement(latin1)) == ascii.substr(1) + "ü");
  EXPECT_TRUE(textOf(mlucElement({{"enUS", std::u16string(8 << 20, u'x')}})) == ascii.substr(8 << 20));
}

TEST(IccText, ReturnsNothingAboveTheLargestSize) {
  EXPECT_TRUE(textOf("text" + bigEndian32(0) + std::string(kMaxIccTextSize, 'x')));
  EXPECT_FALSE(textOf("text" + bigEndian32(0) + std::string(kMaxIccTextSize + 1, 'x')));
}

}  // namespace
