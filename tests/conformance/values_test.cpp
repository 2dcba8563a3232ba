// What CoreFoundation's types have in common, numbers, data, dictionaries and UUIDs.
#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <map>
#include <set>

#include "conformance/text.h"

namespace conformance {
namespace {

using testing::ElementsAre;
using testing::Pair;

// --- constants and types

TEST(Constants, AreTwoBooleansAndTheDefaultAllocator) {
  EXPECT_NE(kCFBooleanTrue, nullptr);
  EXPECT_NE(kCFBooleanFalse, nullptr);
  EXPECT_NE(kCFBooleanTrue, kCFBooleanFalse);
  EXPECT_EQ(kCFAllocatorDefault, nullptr);
}

TEST(Types, AreDistinct) {
  const std::set<CFTypeID> ids = {CFBooleanGetTypeID(), CFDataGetTypeID(), CFDictionaryGetTypeID(), CFNumberGetTypeID(),
                                  CFStringGetTypeID(),  CFURLGetTypeID(),  CFUUIDGetTypeID()};
  EXPECT_EQ(ids.size(), 7U);
}

TEST(Types, AreThoseOfTheirObjects) {
  const auto mutable_dictionary = OwnedRef<CFMutableDictionaryRef>::adopt(
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  EXPECT_EQ(CFGetTypeID(CFSTR("constant")), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeString("").get()), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeString("made").get()), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeString("gem\xC3\xA4\xC3\x9F").get()), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeFileUrl("/a").get()), CFURLGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeFileUrl("/a b\xC3\xA9", true).get()), CFURLGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeData({1}).get()), CFDataGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeDictionary({}, {}).get()), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeDictionary({CFSTR("a")}, {CFSTR("b")}).get()), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetTypeID(mutable_dictionary.get()), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID(kCFBooleanFalse), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeNumber(0).get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeNumber(1).get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeNumber(INT64_MAX).get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeReal(1).get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeUuid(kUuidText).get()), CFUUIDGetTypeID());
}

TEST(Retain, ReturnsItsArgument) {
  const String string = makeString("a string that is long enough to be an object of its own");
  const CFTypeRef retained = CFRetain(string.get());
  EXPECT_EQ(retained, string.get());
  CFRelease(retained);
  EXPECT_EQ(CFStringGetLength(string.get()), 55);
}

// --- equality

TEST(Equal, ComparesStringsByCodeUnits) {
  EXPECT_TRUE(CFEqual(makeString("text").get(), CFSTR("text")));
  EXPECT_TRUE(CFEqual(makeString("").get(), CFSTR("")));
  EXPECT_TRUE(
      CFEqual(makeString("\xE6\x97\xA5\xF0\x9F\x98\x80").get(), makeString("\xE6\x97\xA5\xF0\x9F\x98\x80").get()));
  EXPECT_FALSE(CFEqual(makeString("text").get(), CFSTR("Text")));
  EXPECT_FALSE(CFEqual(makeString("text").get(), CFSTR("text ")));
}

TEST(Equal, IsFalseForCanonicallyEquivalentStrings) {
  EXPECT_FALSE(CFEqual(makeString("\xC3\xA9").get(), makeString("e\xCC\x81").get()));
  EXPECT_FALSE(CFEqual(makeString("e\xCC\x81").get(), makeString("\xC3\xA9").get()));
  EXPECT_FALSE(CFEqual(makeString("\xE2\x84\xAB").get(), makeString("\xC3\x85").get()));
}

TEST(Equal, ComparesNumbersByValue) {
  const std::int32_t narrow = 7;
  const Number small = Number::adopt(CFNumberCreate(nullptr, kCFNumberSInt32Type, &narrow));
  EXPECT_TRUE(CFEqual(makeNumber(7).get(), makeNumber(7).get()));
  EXPECT_TRUE(CFEqual(makeNumber(7).get(), small.get()));
  EXPECT_TRUE(CFEqual(makeNumber(7).get(), makeReal(7).get()));
  EXPECT_FALSE(CFEqual(makeNumber(7).get(), makeReal(7.5).get()));
  EXPECT_FALSE(CFEqual(makeNumber(7).get(), makeNumber(-7).get()));
}

TEST(Equal, IsFalseForAnIntegerAndTheRealItRoundsTo) {
  const bool equal = differsOnPlatform("GNUstep compares numbers as reals");
  constexpr std::int64_t kExact = INT64_C(1) << 53;
  EXPECT_TRUE(CFEqual(makeNumber(kExact).get(), makeReal(kExact).get()));
  EXPECT_FALSE(CFEqual(makeNumber(kExact + 1).get(), makeNumber(kExact).get()));
  EXPECT_EQ(CFEqual(makeNumber(kExact + 1).get(), makeReal(kExact).get()), equal);
  EXPECT_EQ(CFEqual(makeNumber(0).get(), makeReal(-0.0).get()), equal);
}

TEST(Equal, IsFalseForABooleanAndANumber) {
  EXPECT_TRUE(CFEqual(kCFBooleanTrue, kCFBooleanTrue));
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, makeNumber(1).get()));
  EXPECT_FALSE(CFEqual(makeNumber(1).get(), kCFBooleanTrue));
  EXPECT_FALSE(CFEqual(kCFBooleanFalse, makeNumber(0).get()));
}

TEST(Equal, IsFalseForDifferentTypes) {
  EXPECT_FALSE(CFEqual(makeNumber(7).get(), makeString("7").get()));
  EXPECT_FALSE(CFEqual(makeString("7").get(), makeNumber(7).get()));
  EXPECT_FALSE(CFEqual(makeString("file:///a").get(), makeFileUrl("/a").get()));
  EXPECT_FALSE(CFEqual(makeFileUrl("/a").get(), makeString("file:///a").get()));
  EXPECT_FALSE(CFEqual(makeUuid(kUuidText).get(), makeString(kUuidText).get()));
}

TEST(Equal, ComparesDataAndDictionariesByContent) {
  EXPECT_TRUE(CFEqual(makeData({1, 0, 2}).get(), makeData({1, 0, 2}).get()));
  EXPECT_FALSE(CFEqual(makeData({1, 0, 2}).get(), makeData({1, 0}).get()));
  const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("b")}, {kCFBooleanTrue, CFSTR("x")});
  EXPECT_TRUE(CFEqual(dictionary.get(), makeDictionary({CFSTR("b"), CFSTR("a")}, {CFSTR("x"), kCFBooleanTrue}).get()));
  EXPECT_FALSE(CFEqual(dictionary.get(), makeDictionary({CFSTR("a")}, {kCFBooleanTrue}).get()));
  EXPECT_FALSE(
      CFEqual(dictionary.get(), makeDictionary({CFSTR("a"), CFSTR("b")}, {kCFBooleanFalse, CFSTR("x")}).get()));
}

constexpr const char* kBooleansAreNumbers = "in GNUstep's dictionaries a boolean equals the number 1 or 0";

TEST(Equal, IsFalseForDictionariesWithABooleanAndANumber) {
  const bool equal = differsOnPlatform(kBooleansAreNumbers);
  EXPECT_EQ(CFEqual(makeDictionary({CFSTR("a")}, {kCFBooleanTrue}).get(),
                    makeDictionary({CFSTR("a")}, {makeNumber(1).get()}).get()),
            equal);
}

// --- numbers

TEST(Numbers, KeepTheirValues) {
  for (const std::int64_t value :
       std::initializer_list<std::int64_t>{0, -1, 1, 12, 13, 127, 128, 255, 256, 65535, INT32_MAX, INT32_MIN}) {
    EXPECT_THAT(read64(makeNumber(value).get()), Pair(true, value));
    EXPECT_THAT(read32(makeNumber(value).get()), Pair(true, value));
    const auto narrow = static_cast<std::int32_t>(value);
    const Number made = Number::adopt(CFNumberCreate(nullptr, kCFNumberSInt32Type, &narrow));
    EXPECT_THAT(read64(made.get()), Pair(true, value));
    EXPECT_THAT(read32(made.get()), Pair(true, value));
  }
  EXPECT_THAT(read64(makeNumber(INT64_MAX).get()), Pair(true, INT64_MAX));
  EXPECT_THAT(read64(makeNumber(INT64_MIN).get()), Pair(true, INT64_MIN));
}

TEST(Numbers, AreTruncatedWithFalseBeyondTheWidth) {
  EXPECT_THAT(read32(makeNumber(INT64_C(0x1234567890)).get()), Pair(false, 0x34567890));
  EXPECT_THAT(read32(makeNumber(INT64_C(0x80000000)).get()), Pair(false, INT32_MIN));
  EXPECT_THAT(read32(makeNumber(INT64_C(-0x80000001)).get()), Pair(false, INT32_MAX));
  EXPECT_THAT(read32(makeNumber(INT64_C(0x100000000)).get()), Pair(false, 0));
  EXPECT_THAT(read32(makeNumber(UINT32_MAX).get()), Pair(false, -1));
  EXPECT_THAT(read32(makeNumber(INT64_MAX).get()), Pair(false, -1));
  EXPECT_THAT(read32(makeNumber(INT64_MIN).get()), Pair(false, 0));
}

TEST(Numbers, AreTruncatedWithFalseForFractions) {
  EXPECT_THAT(read32(makeReal(2.75).get()), Pair(false, 2));
  EXPECT_THAT(read32(makeReal(-2.75).get()), Pair(false, -2));
  EXPECT_THAT(read32(makeReal(0.5).get()), Pair(false, 0));
  EXPECT_THAT(read64(makeReal(-0.5).get()), Pair(false, 0));
  EXPECT_THAT(read32(makeReal(3.0).get()), Pair(true, 3));
  EXPECT_THAT(read32(makeReal(-0.0).get()), Pair(true, 0));
  EXPECT_THAT(read64(makeReal(4294967296.0).get()), Pair(true, INT64_C(4294967296)));
}

// The processor's conversion decides what is read.
TEST(Numbers, ReturnFalseForRealsBeyondTheWidth) {
  for (const double value : {2147483648.0, -2147483649.0, 4294967296.0, 1e30, -1e30, std::nan("")}) {
    EXPECT_FALSE(read32(makeReal(value).get()).first) << value;
  }
  for (const double value : {9223372036854775808.0, 1e30, -1e30, std::nan("")}) {
    EXPECT_FALSE(read64(makeReal(value).get()).first) << value;
  }
  EXPECT_THAT(read64(makeReal(-9223372036854775808.0).get()), Pair(true, INT64_MIN));
}

TEST(Numbers, AreReadAsReals) {
  const auto read = [](CFNumberRef number) {
    double value = 12345;
    const bool exact = CFNumberGetValue(number, kCFNumberDoubleType, &value) != 0;
    return std::pair(exact, value);
  };
  EXPECT_THAT(read(makeReal(2.75).get()), Pair(true, 2.75));
  EXPECT_THAT(read(makeNumber(-3).get()), Pair(true, -3.0));
  EXPECT_THAT(read(makeNumber(INT64_C(1) << 53).get()).second, 9007199254740992.0);
  EXPECT_THAT(read(makeNumber((INT64_C(1) << 53) + 1).get()), Pair(false, 9007199254740992.0));
}

TEST(Numbers, ReadBooleansAsOneOrZero) {
  EXPECT_THAT(read32(reinterpret_cast<CFNumberRef>(kCFBooleanTrue)), Pair(true, 1));
  EXPECT_THAT(read32(reinterpret_cast<CFNumberRef>(kCFBooleanFalse)), Pair(true, 0));
}

// --- data

TEST(Data, CopiesTheBytes) {
  std::array<UInt8, 3> bytes = {1, 0, 3};
  const Data data = Data::adopt(CFDataCreate(nullptr, bytes.data(), bytes.size()));
  bytes.fill(9);
  ASSERT_EQ(CFDataGetLength(data.get()), 3);
  const UInt8* const copied = CFDataGetBytePtr(data.get());
  EXPECT_THAT(std::vector<UInt8>(copied, copied + 3), ElementsAre(1, 0, 3));
}

TEST(Data, IsEmptyForNothing) {
  const Data empty = Data::adopt(CFDataCreate(nullptr, nullptr, 0));
  ASSERT_TRUE(empty);
  EXPECT_EQ(CFDataGetLength(empty.get()), 0);
}

// --- dictionaries

TEST(Dictionaries, ReturnTheValuesOfTheirKeys) {
  const String value = makeString("a value that is an object of its own");
  const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("b")}, {value.get(), kCFBooleanTrue});
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), value.get());
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeString("b").get()), kCFBooleanTrue);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("c")), nullptr);
}

TEST(Dictionaries, KeepTheirValuesAlive) {
  Dictionary dictionary;
  {
    const String value = makeString("a value that only the dictionary keeps");
    dictionary = makeDictionary({CFSTR("a")}, {value.get()});
  }
  EXPECT_EQ(textOf(static_cast<CFStringRef>(CFDictionaryGetValue(dictionary.get(), CFSTR("a")))),
            "a value that only the dictionary keeps");
}

TEST(Dictionaries, KeepTheFirstOfEqualKeys) {
  const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("a")}, {kCFBooleanTrue, kCFBooleanFalse});
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 1);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), kCFBooleanTrue);
}

TEST(Dictionaries, AcceptUuidsUrlsNumbersAndDataAsKeys) {
  const Uuid uuid = makeUuid(kUuidText);
  const Dictionary dictionary =
      makeDictionary({uuid.get(), makeFileUrl("/a").get(), makeNumber(5).get(), makeData({1, 2}).get()},
                     {CFSTR("uuid"), CFSTR("url"), CFSTR("number"), CFSTR("data")});
  const auto value = [&](CFTypeRef key) {
    const auto* const found = static_cast<CFStringRef>(CFDictionaryGetValue(dictionary.get(), key));
    return found != nullptr ? textOf(found).value_or("") : "(none)";
  };
  EXPECT_EQ(value(makeUuid(kUuidText).get()), "uuid");
  EXPECT_EQ(value(makeFileUrl("/a").get()), "url");
  EXPECT_EQ(value(makeFileUrl("/a", true).get()), "(none)");
  EXPECT_EQ(value(makeNumber(5).get()), "number");
  EXPECT_EQ(value(makeReal(5).get()), "number");
  EXPECT_EQ(value(makeData({1, 2}).get()), "data");
}

TEST(Dictionaries, DistinguishABooleanKeyFromANumber) {
  const bool same = differsOnPlatform(kBooleansAreNumbers);
  const Dictionary dictionary =
      makeDictionary({makeNumber(1).get(), kCFBooleanTrue}, {CFSTR("number"), CFSTR("boolean")});
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), same ? 1 : 2);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeNumber(1).get()) ==
                CFDictionaryGetValue(dictionary.get(), kCFBooleanTrue),
            same);
}

TEST(Dictionaries, DistinguishCanonicallyEquivalentKeys) {
  const Dictionary dictionary = makeDictionary({makeString("\xC3\xA9").get()}, {kCFBooleanTrue});
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeString("\xC3\xA9").get()), kCFBooleanTrue);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeString("e\xCC\x81").get()), nullptr);
}

TEST(Dictionaries, TakeAndReplaceValuesWhenMutable) {
  const auto dictionary = OwnedRef<CFMutableDictionaryRef>::adopt(
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 0);
  CFDictionarySetValue(dictionary.get(), CFSTR("a"), kCFBooleanTrue);
  CFDictionarySetValue(dictionary.get(), makeString("a").get(), kCFBooleanFalse);
  CFDictionarySetValue(dictionary.get(), CFSTR("b"), kCFBooleanTrue);
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), kCFBooleanFalse);
}

TEST(Dictionaries, WriteOnlyAPresentValue) {
  const Dictionary dictionary = makeDictionary({CFSTR("a")}, {kCFBooleanTrue});
  const void* value = kCFBooleanFalse;
  EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("b"), &value));
  EXPECT_EQ(value, kCFBooleanFalse);
  EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), &value));
  EXPECT_EQ(value, kCFBooleanTrue);
  EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), nullptr));
}

TEST(Dictionaries, ReturnKeysAndValuesInTheSameOrder) {
  const Dictionary dictionary =
      makeDictionary({CFSTR("a"), CFSTR("b"), CFSTR("c")}, {CFSTR("va"), CFSTR("vb"), CFSTR("vc")});
  std::array<const void*, 3> keys{};
  std::array<const void*, 3> values{};
  CFDictionaryGetKeysAndValues(dictionary.get(), keys.data(), values.data());
  std::map<std::string, std::string> pairs;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    pairs.emplace(*textOf(static_cast<CFStringRef>(keys[i])), *textOf(static_cast<CFStringRef>(values[i])));
  }
  EXPECT_THAT(pairs, ElementsAre(Pair("a", "va"), Pair("b", "vb"), Pair("c", "vc")));
  std::array<const void*, 3> only_keys{};
  CFDictionaryGetKeysAndValues(dictionary.get(), only_keys.data(), nullptr);
  EXPECT_EQ(only_keys, keys);
  CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, nullptr);
}

// --- UUIDs

std::string uuidText(const std::string& text) {
  const Uuid uuid = makeUuid(text);
  return uuid ? textOf(String::adopt(CFUUIDCreateString(nullptr, uuid.get())).get()).value_or("") : "(null)";
}

TEST(Uuids, AreOneObjectPerValue) {
  const Uuid from_bytes = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
  const Uuid from_text = makeUuid(kUuidText);
  EXPECT_EQ(from_bytes.get(), from_text.get());
  EXPECT_TRUE(CFEqual(from_bytes.get(), from_text.get()));
  EXPECT_FALSE(CFEqual(from_bytes.get(), makeUuid("E621E1F8-C36C-495A-93FC-0C247A3E6E50").get()));
}

TEST(Uuids, KeepTheirBytes) {
  const CFUUIDBytes bytes = CFUUIDGetUUIDBytes(makeUuid(kUuidText).get());
  EXPECT_EQ(std::memcmp(&bytes, &kUuidBytes, sizeof bytes), 0);
}

TEST(Uuids, AreReadInEitherCaseAndWrittenInUpperCase) {
  EXPECT_EQ(uuidText(kUuidText), kUuidText);
  EXPECT_EQ(uuidText("e621e1f8-c36c-495a-93fc-0c247a3e6e5f"), kUuidText);
  EXPECT_EQ(uuidText("00000000-0000-0000-0000-000000000000"), "00000000-0000-0000-0000-000000000000");
}

// What precedes the first digit is skipped, a separator is any one character, and what is missing or not a digit is 0.
TEST(Uuids, AreReadFromTextThatIsNotCanonical) {
  EXPECT_EQ(uuidText("{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}"), kUuidText);
  EXPECT_EQ(uuidText(" E621E1F8_C36C 495A-93FC-0C247A3E6E5F0"), kUuidText);
  EXPECT_EQ(uuidText("\xE6\x97\xA5"
                     "E621E1F8-C36C-495A-93FC-0C247A3E6E5F"),
            kUuidText);
  EXPECT_EQ(uuidText("E621E1F8-C36C-495A-93FC-0C247A3E6E5"), "E621E1F8-C36C-495A-93FC-0C247A3E6E00");
  EXPECT_EQ(uuidText("E621E1F8-C36C-495A-93FC-0C247A3E6E5:"), "E621E1F8-C36C-495A-93FC-0C247A3E6E00");
  EXPECT_EQ(uuidText("E621E1F8C36C495A93FC0C247A3E6E5F"), "E621E1F8-36C4-5A93-C0C2-7A3E6E5F0000");
  EXPECT_EQ(uuidText("E621E1F8"), "E621E1F8-0000-0000-0000-000000000000");
  EXPECT_EQ(uuidText("xyz"), "00000000-0000-0000-0000-000000000000");
}

TEST(Uuids, AreNullForNoText) {
  EXPECT_EQ(uuidText(""), "(null)");
  EXPECT_EQ(CFUUIDCreateFromString(nullptr, nullptr), nullptr);
}

}  // namespace
}  // namespace conformance
