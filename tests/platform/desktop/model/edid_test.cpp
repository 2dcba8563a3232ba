#include "desktop/model/edid.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "support/edid_maker.h"
#include "support/process.h"

namespace {

using platform::desktop::decodeEdid;
using platform::desktop::kEdidBlockSize;
using support::EdidBytes;
using support::fixChecksum;
using support::makeEdid;

constexpr std::size_t kNameText = 95;  // where makeEdid puts the text of the name

std::string edidDecode(const std::vector<std::string>& options, const EdidBytes& edid) {
  std::vector<std::string> command{"edid-decode"};
  command.insert(command.end(), options.begin(), options.end());
  return support::run(command, {}, std::string(edid.begin(), edid.end())).output;
}

/// What edid-decode prints behind a label.
std::string decoded(const EdidBytes& edid, const std::string& label) {
  std::smatch match;
  const std::string text = edidDecode({"--skip-hex-dump"}, edid);
  return std::regex_search(text, match, std::regex(label + ": '?([^'\n]*)")) ? match[1].str() : "";
}

EdidBytes withNameBytes(const std::string& bytes) {
  EdidBytes edid = makeEdid();
  std::copy(bytes.begin(), bytes.end(), edid.begin() + kNameText);
  fixChecksum(edid);
  return edid;
}

TEST(EdidMaker, MakesEdidsThatConform) {
  for (const unsigned extensions : {0u, 1u}) {
    const std::string report = edidDecode({"--check", "--skip-hex-dump"}, makeEdid({.extensions = extensions}));
    EXPECT_NE(report.find("EDID conformity: PASS"), std::string::npos) << report;
  }
}

TEST(Edid, AgreesWithEdidDecode) {
  for (const auto& monitor : std::vector<support::Monitor>{
           {.vendor = "AAA", .product = 1, .serial = 1, .name = "A"},
           {.vendor = "ZZZ", .product = 0xFFFF, .serial = 0xFFFFFFFF, .name = "Exactly13Char"},
           {.vendor = "DEL", .product = 0x1234, .serial = 0x80000000, .name = "With Blanks 1"},
           {.vendor = "SAM", .product = 0x0100, .serial = 256, .name = "12 Chars    "}}) {
    const EdidBytes bytes = makeEdid(monitor);
    const auto edid = decodeEdid(bytes);
    ASSERT_TRUE(edid);
    const std::string letters = decoded(bytes, "Manufacturer");
    ASSERT_EQ(letters.size(), 3u);
    EXPECT_EQ(edid->vendor, (letters[0] - '@') << 10 | (letters[1] - '@') << 5 | (letters[2] - '@'));
    EXPECT_EQ(std::to_string(edid->product), decoded(bytes, "Model"));
    EXPECT_EQ(std::to_string(edid->serial), decoded(bytes, "Serial Number"));
    const std::string name = decoded(bytes, "Display Product Name");
    EXPECT_EQ(edid->name, name.substr(0, name.find_last_not_of(' ') + 1));
  }
}

TEST(Edid, PacksTheLettersOfKnownVendors) {
  EXPECT_EQ(decodeEdid(makeEdid({.vendor = "APP"}))->vendor, 0x0610);
  EXPECT_EQ(decodeEdid(makeEdid({.vendor = "DEL"}))->vendor, 0x10AC);
}

TEST(Edid, RejectsFewerThan128Bytes) {
  const EdidBytes whole = makeEdid();
  for (std::size_t size = 0; size < kEdidBlockSize; ++size) {
    const EdidBytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(decodeEdid(part)) << size;
  }
  EXPECT_TRUE(decodeEdid(whole));
}

TEST(Edid, RejectsAnyFlippedBit) {
  for (std::size_t bit = 0; bit < kEdidBlockSize * 8; ++bit) {
    EdidBytes edid = makeEdid();
    edid[bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
    EXPECT_FALSE(decodeEdid(edid)) << bit;
  }
}

TEST(Edid, RejectsAnotherHeaderOrVersion) {
  for (const std::size_t offset : {0u, 1u, 6u, 7u, 18u}) {
    EdidBytes edid = makeEdid();
    edid[offset] = 2;
    fixChecksum(edid);
    EXPECT_FALSE(decodeEdid(edid)) << offset;
  }
}

TEST(Edid, IgnoresBytesAfterTheBaseBlock) {
  EdidBytes edid = makeEdid({.name = "Base"});
  edid[126] = 255;
  fixChecksum(edid);
  EXPECT_EQ(decodeEdid(edid)->name, "Base");
  edid.resize(100000, 0xEE);
  EXPECT_EQ(decodeEdid(edid)->name, "Base");
}

TEST(EdidName, IsAbsentWithoutADescriptor) {
  EXPECT_EQ(decodeEdid(makeEdid({.name = std::nullopt}))->name, std::nullopt);
}

TEST(EdidName, IsAbsentForABlankDescriptor) {
  EXPECT_EQ(decodeEdid(withNameBytes("\n            "))->name, std::nullopt);
  EXPECT_EQ(decodeEdid(withNameBytes("             "))->name, std::nullopt);
  EXPECT_EQ(decodeEdid(withNameBytes(std::string(13, '\0')))->name, std::nullopt);
}

TEST(EdidName, EndsAtALineFeedACarriageReturnOrAZeroByte) {
  EXPECT_EQ(decodeEdid(withNameBytes("Name\nBehind   "))->name, "Name");
  EXPECT_EQ(decodeEdid(withNameBytes("Name\r\n       "))->name, "Name");
  EXPECT_EQ(decodeEdid(withNameBytes(std::string("Name\0Behind\n ", 13)))->name, "Name");
}

TEST(EdidName, KeepsBlanksExceptAtItsEnd) {
  EXPECT_EQ(decodeEdid(withNameBytes(" Two  Words \n"))->name, " Two  Words");
}

TEST(EdidName, MayFillItsField) { EXPECT_EQ(decodeEdid(withNameBytes("ThirteenChars"))->name, "ThirteenChars"); }

TEST(EdidName, IsTheFirstOfTheFourDescriptors) {
  for (const std::size_t offset : {54u, 72u, 90u, 108u}) {
    EdidBytes edid = makeEdid({.name = std::nullopt});
    const std::string descriptor("\0\0\0\xFC\0Here\n        ", 18);
    std::copy(descriptor.begin(), descriptor.end(), edid.begin() + static_cast<std::ptrdiff_t>(offset));
    fixChecksum(edid);
    EXPECT_EQ(decodeEdid(edid)->name, "Here") << offset;
  }
  EdidBytes edid = makeEdid({.name = "First"});
  const std::string second("\0\0\0\xFC\0Second\n      ", 18);
  std::copy(second.begin(), second.end(), edid.begin() + 108);
  fixChecksum(edid);
  EXPECT_EQ(decodeEdid(edid)->name, "First");
}

TEST(EdidName, IgnoresATimingThatLooksLikeAName) {
  EdidBytes edid = makeEdid({.name = std::nullopt});
  const std::string timing("\x01\0\0\xFC\0No Name\n     ", 18);
  std::copy(timing.begin(), timing.end(), edid.begin() + 108);
  fixChecksum(edid);
  EXPECT_EQ(decodeEdid(edid)->name, std::nullopt);
}

TEST(EdidName, IsConvertedFromCodePage437) {
  EXPECT_EQ(decodeEdid(withNameBytes("Caf\x82 \x9C\xE4\xEA\n   "))->name, "Café £ΣΩ");
}

TEST(EdidName, LeavesControlCharactersOut) {
  EXPECT_EQ(decodeEdid(withNameBytes("\x01\x1F"
                                     "a\tb\x7F"
                                     "c\n     "))
                ->name,
            "abc");
}

}  // namespace
