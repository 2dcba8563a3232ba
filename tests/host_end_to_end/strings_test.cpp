// Strings, built and read through the family.
#include "host_end_to_end/family_test.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// What the host fills in about a string's bytes, and gets back to dispose of.
struct StringData {
  const char* bytes = nullptr;
  std::int64_t size = 0;
  std::uint32_t encoding = 0;
  void* owner = nullptr;
};

constexpr std::uint32_t kLatin1 = 0x0201;

class Strings : public FamilyTest {};

TEST_F(Strings, HaveTheBytesTheyWereBuiltOf) {
  for (const std::string& bytes : {std::string(), std::string("a"), std::string("Grün"), std::string("a\0b\0", 4),
                                   std::string("\xFF\xFE"), std::string(100000, 'x')}) {
    REALstringStruct* const string = build(bytes);
    EXPECT_EQ(contents(string), bytes);
    EXPECT_EQ(REALStringLength(string), static_cast<std::int64_t>(bytes.size()));
    EXPECT_STREQ(reinterpret_cast<const char*>(REALCString(string)), bytes.c_str());
    REALUnlockString(string);
  }
  EXPECT_EQ(living(devhost::Counted::Kind::kString), 0U);
}

TEST_F(Strings, AreBuiltAsUtf8UnlessTheEncodingIsGiven) {
  auto* const plain = reinterpret_cast<REALstringStruct*>(REALBuildString("abc", 2));
  auto* const given = REALBuildString("abc", 3, kLatin1);
  EXPECT_EQ(contents(plain), "ab");
  EXPECT_EQ(REALGetStringEncoding(plain), kHostEncodingUTF8);
  EXPECT_EQ(contents(given), "abc");
  EXPECT_EQ(REALGetStringEncoding(given), kLatin1);
  REALUnlockString(plain);
  REALUnlockString(given);
}

TEST_F(Strings, KeepTheEncodingThatIsSet) {
  REALstringStruct* const string = build("abc");
  REALSetStringEncoding(string, kLatin1);
  EXPECT_EQ(REALGetStringEncoding(string), kLatin1);
  REALSetStringEncoding(string, std::uint32_t{0xFFFFFFFF});
  EXPECT_EQ(REALGetStringEncoding(string), 0xFFFFFFFFU);
  EXPECT_EQ(contents(string), "abc");
  REALUnlockString(string);
}

TEST_F(Strings, OfTheSystemAreUtf8) { EXPECT_EQ(REALGetSystemTextEncoding(), kHostEncodingUTF8); }

TEST_F(Strings, LiveUntilEveryLockIsUndone) {
  REALstringStruct* const string = build("abc");
  REALLockString(string);
  REALLockString(string);
  REALUnlockString(string);
  REALUnlockString(string);
  EXPECT_EQ(contents(string), "abc");
  EXPECT_EQ(host_.unreleasedStrings().size(), 1U);
  REALUnlockString(string);
  EXPECT_EQ(living(devhost::Counted::Kind::kString), 0U);
}

TEST_F(Strings, ReleasedOnceTooOftenAreNotedAsAFault) {
  REALstringStruct* const string = build("abc");
  REALUnlockString(string);
  REALUnlockString(string);
  EXPECT_THAT(takeFaults(), ElementsAre(HasSubstr("REALUnlockString")));
}

TEST_F(Strings, ThatAreNullHaveNothing) {
  std::int64_t length = -7;
  EXPECT_EQ(REALGetStringContents(nullptr, &length), nullptr);
  EXPECT_EQ(length, -7);
  EXPECT_EQ(REALStringLength(nullptr), 0);
  REALUnlockString(nullptr);
}

TEST_F(Strings, HaveDataInTheirOwnEncodingAndInAny) {
  const std::string bytes("a\0b", 3);
  REALstringStruct* const string = build(bytes);
  for (const std::uint32_t encoding : {kHostEncodingUTF8, std::uint32_t{0}}) {
    StringData data;
    EXPECT_TRUE(REALGetStringData(string, encoding, &data));
    EXPECT_EQ(std::string(data.bytes, static_cast<std::size_t>(data.size)), bytes);
    EXPECT_EQ(data.encoding, kHostEncodingUTF8);
    REALDisposeStringData(&data);
    EXPECT_EQ(data.bytes, nullptr);
  }
  StringData data;
  EXPECT_FALSE(REALGetStringData(string, kLatin1, &data));
  EXPECT_EQ(data.bytes, nullptr);
  REALUnlockString(string);
}

TEST_F(Strings, AreKeptByTheirDataUntilItIsDisposedOf) {
  REALstringStruct* const string = build("bytes");
  StringData data;
  EXPECT_TRUE(REALGetStringData(string, kHostEncodingUTF8, &data));
  REALUnlockString(string);
  EXPECT_EQ(std::string(data.bytes, static_cast<std::size_t>(data.size)), "bytes");
  REALDisposeStringData(&data);
  EXPECT_EQ(living(devhost::Counted::Kind::kString), 0U);
}

TEST_F(Strings, CompareByTheirBytes) {
  REALstringStruct* const a = build(std::string_view("a\0a", 3));
  REALstringStruct* const b = build(std::string_view("a\0b", 3));
  REALstringStruct* const empty = build("");
  EXPECT_LT(REALCompareStrings(a, b), 0);
  EXPECT_GT(REALCompareStrings(b, a), 0);
  EXPECT_EQ(REALCompareStrings(a, a), 0);
  EXPECT_GT(REALCompareStrings(a, empty), 0);
  EXPECT_EQ(REALCompareStrings(empty, static_cast<REALstringStruct*>(nullptr)), 0);
  for (REALstringStruct* const string : {a, b, empty}) {
    REALUnlockString(string);
  }
}

TEST_F(Strings, AreAddedIntoANewOne) {
  REALstringStruct* const a = build(std::string_view("a\0", 2));
  REALstringStruct* const b = build("b");
  auto* const sum = reinterpret_cast<REALstringStruct*>(REALAddStrings(a, b));
  REALUnlockString(a);
  REALUnlockString(b);
  EXPECT_EQ(contents(sum), std::string("a\0b", 3));
  EXPECT_EQ(living(devhost::Counted::Kind::kString), 1U);
  REALUnlockString(sum);
}

TEST_F(Strings, AreReadAsPascalStringsOfAtMost255Bytes) {
  REALstringStruct* const small = build("abc");
  REALstringStruct* const large = build(std::string(300, 'x'));
  const auto* const three = reinterpret_cast<const char*>(REALPString(small));
  EXPECT_EQ(std::string(three, 4), "\3abc");
  const auto* const many = reinterpret_cast<const unsigned char*>(REALPString(large));
  EXPECT_EQ(many[0], 255);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(many) + 1, 255), std::string(255, 'x'));
  REALUnlockString(small);
  REALUnlockString(large);
}

TEST_F(Strings, AreReadAsCodesOfFourCharacters) {
  REALstringStruct* const four = build("mntr");
  REALstringStruct* const two = build("ab");
  EXPECT_EQ(REALstringToOSType(four), 0x6D6E7472);
  EXPECT_EQ(REALstringToOSType(two), 0x61622020);
  REALUnlockString(four);
  REALUnlockString(two);
}

TEST_F(Strings, LoseTheMarksOfACaption) {
  REALstringStruct* const caption = build("&Save && &&&Close&");
  auto* const shown = reinterpret_cast<REALstringStruct*>(REALStripAmpersands(caption));
  EXPECT_EQ(contents(shown), "Save & &Close");
  EXPECT_EQ(contents(caption), "&Save && &&&Close&");
  REALUnlockString(caption);
  REALUnlockString(shown);
}

}  // namespace
