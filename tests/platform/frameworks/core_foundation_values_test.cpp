// CoreFoundation's types over the system's Foundation, one after another.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "frameworks/CoreFoundation/uuids.h"
#include "frameworks/hooks/calls.h"
#include "platform/frameworks/core_foundation_objects.h"
#include "platform/frameworks/foundation_probe.h"

namespace core_foundation_test {
namespace {

using platform::calls::Call;
using testing::ElementsAre;

// --- strings

TEST(ConstantStrings, AreOnePerText) {
  const std::string copy = "one per text";
  EXPECT_EQ(CFSTR("one per text"), __CFStringMakeConstantString(copy.c_str()));
  EXPECT_NE(CFSTR("one per text"), CFSTR("another text"));
}

TEST(ConstantStrings, AreTheSameOnEveryThread) {
  constexpr int kThreads = 4;
  constexpr int kTexts = 200;
  std::array<std::vector<CFStringRef>, kThreads> made;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (auto& strings : made) {
    threads.emplace_back([&strings] {
      for (int i = 0; i < kTexts; ++i) {
        strings.push_back(__CFStringMakeConstantString(("shared " + std::to_string(i)).c_str()));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& strings : made) {
    EXPECT_EQ(strings, made[0]);
  }
}

TEST(StringCreate, AcceptsUtf8WithNuls) {
  const std::string text("a\0\xC3\xA9\xF0\x9F\x98\x80", 8);
  const String string = makeString(text);
  ASSERT_TRUE(string);
  EXPECT_EQ(CFStringGetLength(string.get()), 5);
  std::array<char, 16> buffer{};
  EXPECT_TRUE(CFStringGetCString(string.get(), buffer.data(), buffer.size(), kCFStringEncodingUTF8));
  EXPECT_EQ(std::string(buffer.data(), text.size()), text);
}

TEST(StringCreate, ReturnsTheEmptyStringForNoBytes) {
  const String string = String::adopt(CFStringCreateWithBytes(nullptr, nullptr, 0, kCFStringEncodingUTF8, false));
  ASSERT_TRUE(string);
  EXPECT_EQ(CFStringGetLength(string.get()), 0);
  EXPECT_EQ(textOf(string.get()), "");
}

TEST(StringCreate, ReturnsNullForInvalidUtf8) {
  for (const char* const bytes : {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xE2\x82", "\x80", "\xFF"}) {
    EXPECT_FALSE(makeString(bytes)) << testing::PrintToString(bytes);
  }
}

TEST(StringCreate, ReturnsNullForInvalidArguments) {
  const UInt8 bytes[] = {'a'};
  constexpr CFStringEncoding kMacRoman = 0;
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, false), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, -1, kCFStringEncodingUTF8, false), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, 1, kMacRoman, false), nullptr);
}

TEST(StringGetCString, NeedsRoomForTheTextAndItsEnd) {
  const String string = makeString("abc\xC3\xA9");
  std::array<char, 8> buffer{};
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), 5, kCFStringEncodingUTF8));
  EXPECT_TRUE(CFStringGetCString(string.get(), buffer.data(), 6, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer.data(), "abc\xC3\xA9");
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), 0, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), -1, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(string.get(), nullptr, 8, kCFStringEncodingUTF8));
}

TEST(MaximumSize, IsThreeBytesPerUnit) {
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF8), 30);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(std::numeric_limits<CFIndex>::max(), kCFStringEncodingUTF8), -1);
}

// --- URLs

TEST(UrlCreate, TrustsTheCallerAboutDirectories) {
  const Url file = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/tmp"), kCFURLPOSIXPathStyle, false));
  const Url directory = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/no/x"), kCFURLPOSIXPathStyle, true));
  EXPECT_EQ(textOf(CFURLGetString(file.get())), "file:///tmp");
  EXPECT_EQ(textOf(CFURLGetString(directory.get())), "file:///no/x/");
}

TEST(UrlCreate, ReturnsNullForAnotherPathStyle) {
  EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/tmp"), static_cast<CFURLPathStyle>(2), false), nullptr);
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  EXPECT_EQ(CFURLCopyFileSystemPath(url.get(), static_cast<CFURLPathStyle>(2)), nullptr);
}

TEST(UrlCopyPath, UnescapesAndDropsTheTrailingSlash) {
  const String path = makeString("/a b#c?d%41/\xC3\xA9");
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, path.get(), kCFURLPOSIXPathStyle, true));
  const String copied = String::adopt(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
  EXPECT_EQ(textOf(CFURLGetString(url.get())), "file:///a%20b%23c%3Fd%2541/%C3%A9/");
  EXPECT_EQ(textOf(copied.get()), "/a b#c?d%41/\xC3\xA9");
}

// --- data

TEST(DataCreate, CopiesTheBytes) {
  std::array<UInt8, 3> bytes = {1, 0, 3};
  const Data data = Data::adopt(CFDataCreate(nullptr, bytes.data(), bytes.size()));
  bytes.fill(9);
  ASSERT_EQ(CFDataGetLength(data.get()), 3);
  const UInt8* const kept = CFDataGetBytePtr(data.get());
  EXPECT_THAT(std::vector<UInt8>(kept, kept + 3), ElementsAre(1, 0, 3));
}

TEST(DataCreate, ReturnsEmptyDataForNothingAndNullForInvalidArguments) {
  const Data empty = Data::adopt(CFDataCreate(nullptr, nullptr, 0));
  ASSERT_TRUE(empty);
  EXPECT_EQ(CFDataGetLength(empty.get()), 0);
  const UInt8 byte = 1;
  EXPECT_EQ(CFDataCreate(nullptr, nullptr, 1), nullptr);
  EXPECT_EQ(CFDataCreate(nullptr, &byte, -1), nullptr);
}

// --- dictionaries

TEST(DictionaryCreate, HoldsItsKeysAndValues) {
  const String value = makeString("a value that is an object of its own");
  const CFIndex before = CFGetRetainCount(value.get());
  {
    const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("b")}, {value.get(), kCFBooleanTrue});
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), value.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeString("b").get()), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("c")), nullptr);
    EXPECT_EQ(CFGetRetainCount(value.get()), before + 1);
  }
  EXPECT_EQ(CFGetRetainCount(value.get()), before);
}

TEST(DictionaryCreate, KeepsTheFirstOfEqualKeys) {
  const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("a")}, {kCFBooleanTrue, kCFBooleanFalse});
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 1);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), kCFBooleanTrue);
}

TEST(DictionaryCreate, AcceptsUuidsUrlsAndNumbersAsKeys) {
  const Uuid uuid = makeUuid(kUuidText);
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  const Number number = makeNumber(5);
  const Dictionary dictionary =
      makeDictionary({uuid.get(), url.get(), number.get()}, {CFSTR("uuid"), CFSTR("url"), CFSTR("number")});
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), uuid.get()), CFSTR("uuid"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), url.get()), CFSTR("url"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeNumber(5).get()), CFSTR("number"));
}

TEST(DictionaryCreate, ReturnsNullForANegativeCount) {
  EXPECT_EQ(CFDictionaryCreate(nullptr, nullptr, nullptr, -1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks),
            nullptr);
}

TEST(DictionaryDeath, AbortsForNullsAndOtherCallbacks) {
  EXPECT_DEATH(makeDictionary({nullptr}, {CFSTR("value")}), "CFDictionaryCreate: null object");
  EXPECT_DEATH(makeDictionary({CFSTR("key")}, {nullptr}), "CFDictionaryCreate: null object");
  EXPECT_DEATH(CFDictionaryCreate(nullptr, nullptr, nullptr, 0, nullptr, nullptr), "only dictionaries of objects");
  EXPECT_DEATH(CFDictionaryGetValue(makeDictionary({}, {}).get(), nullptr), "CFDictionaryGetValue: null object");
}

TEST(MutableDictionary, TakesAndReplacesValues) {
  const auto dictionary = OwnedRef<CFMutableDictionaryRef>::adopt(
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  CFDictionarySetValue(dictionary.get(), CFSTR("a"), CFSTR("1"));
  CFDictionarySetValue(dictionary.get(), CFSTR("a"), CFSTR("2"));
  CFDictionarySetValue(dictionary.get(), CFSTR("b"), CFSTR("3"));
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), CFSTR("2"));
}

TEST(GetValueIfPresent, WritesOnlyAPresentValue) {
  const Dictionary dictionary = makeDictionary({CFSTR("a")}, {kCFBooleanTrue});
  const void* value = CFSTR("untouched");
  EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("b"), &value));
  EXPECT_EQ(value, CFSTR("untouched"));
  EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), &value));
  EXPECT_EQ(value, kCFBooleanTrue);
  EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), nullptr));
}

TEST(GetKeysAndValues, GivesEachKeyItsValue) {
  const Dictionary dictionary =
      makeDictionary({CFSTR("a"), CFSTR("b"), CFSTR("c")}, {CFSTR("va"), CFSTR("vb"), CFSTR("vc")});
  std::array<const void*, 3> keys{};
  std::array<const void*, 3> values{};
  CFDictionaryGetKeysAndValues(dictionary.get(), keys.data(), values.data());
  std::set<std::string> pairs;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    pairs.insert(*textOf(static_cast<CFStringRef>(keys[i])) + *textOf(static_cast<CFStringRef>(values[i])));
  }
  EXPECT_THAT(pairs, ElementsAre("ava", "bvb", "cvc"));
  std::array<const void*, 3> only_keys{};
  CFDictionaryGetKeysAndValues(dictionary.get(), only_keys.data(), nullptr);
  EXPECT_EQ(only_keys, keys);
  CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, nullptr);
}

// --- numbers

TEST(Numbers, KeepTheirValues) {
  for (const std::int64_t value : std::initializer_list<std::int64_t>{0, -1, 1, INT32_MAX, INT32_MIN}) {
    EXPECT_THAT(read64(makeNumber(value).get()), testing::Pair(true, value));
    EXPECT_THAT(read32(makeNumber(value).get()), testing::Pair(true, value));
    const auto narrow = static_cast<std::int32_t>(value);
    const Number made = Number::adopt(CFNumberCreate(nullptr, kCFNumberSInt32Type, &narrow));
    EXPECT_THAT(read64(made.get()), testing::Pair(true, value));
  }
  EXPECT_THAT(read64(makeNumber(INT64_MAX).get()), testing::Pair(true, INT64_MAX));
  EXPECT_THAT(read64(makeNumber(INT64_MIN).get()), testing::Pair(true, INT64_MIN));
}

TEST(Numbers, AreTruncatedWithFalseBeyondTheWidth) {
  EXPECT_THAT(read32(makeNumber(INT64_C(0x1234567890)).get()), testing::Pair(false, 0x34567890));
  EXPECT_THAT(read32(makeNumber(INT64_C(0x80000000)).get()), testing::Pair(false, INT32_MIN));
  EXPECT_THAT(read32(makeNumber(INT64_C(-0x80000001)).get()), testing::Pair(false, INT32_MAX));
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(static_cast<unsigned long long>(UINT64_MAX))).get()),
              testing::Pair(false, -1));
}

TEST(Numbers, AreTruncatedWithFalseForFractions) {
  EXPECT_THAT(read32(Number::adopt(probe::createNumber(2.75)).get()), testing::Pair(false, 2));
  EXPECT_THAT(read32(Number::adopt(probe::createNumber(-2.75)).get()), testing::Pair(false, -2));
  EXPECT_THAT(read32(Number::adopt(probe::createNumber(3.0)).get()), testing::Pair(true, 3));
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(1e30)).get()), testing::Pair(false, INT64_MAX));
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(-1e30)).get()), testing::Pair(false, INT64_MIN));
  EXPECT_FALSE(read64(Number::adopt(probe::createNumber(std::nan(""))).get()).first);
}

TEST(Numbers, ReadBooleansAsOneOrZero) {
  EXPECT_THAT(read32(reinterpret_cast<CFNumberRef>(kCFBooleanTrue)), testing::Pair(true, 1));
  EXPECT_THAT(read32(reinterpret_cast<CFNumberRef>(kCFBooleanFalse)), testing::Pair(true, 0));
}

TEST(Numbers, FailForAnUnknownType) {
  const double value = 1;
  double read = 2;
  constexpr auto kDouble = static_cast<CFNumberType>(13);
  EXPECT_EQ(CFNumberCreate(nullptr, kDouble, &value), nullptr);
  EXPECT_FALSE(CFNumberGetValue(makeNumber(1).get(), kDouble, &read));
  EXPECT_EQ(read, 2);
}

// --- UUIDs

TEST(Uuids, AreOneObjectPerValue) {
  const Uuid from_bytes = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
  const Uuid from_text = makeUuid(kUuidText);
  EXPECT_EQ(from_bytes.get(), from_text.get());
  EXPECT_EQ(CFGetRetainCount(from_bytes.get()), 2);
  EXPECT_NE(from_bytes.get(), makeUuid("E621E1F8-C36C-495A-93FC-0C247A3E6E50").get());
}

TEST(Uuids, AreRecreatedAfterTheLastRelease) {
  for (int round = 0; round < 3; ++round) {
    const Uuid uuid = makeUuid(kUuidText);
    EXPECT_EQ(CFGetRetainCount(uuid.get()), 1);
    EXPECT_EQ(textOf(String::adopt(CFUUIDCreateString(nullptr, uuid.get())).get()), kUuidText);
  }
}

TEST(Uuids, KeepTheirBytes) {
  const CFUUIDBytes bytes = CFUUIDGetUUIDBytes(makeUuid(kUuidText).get());
  EXPECT_EQ(std::memcmp(&bytes, &kUuidBytes, sizeof bytes), 0);
}

TEST(Uuids, AreReadInEitherCaseAndWrittenInUpperCase) {
  const Uuid uuid = makeUuid("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
  EXPECT_EQ(textOf(String::adopt(CFUUIDCreateString(nullptr, uuid.get())).get()), kUuidText);
}

TEST(Uuids, AreNullForTextThatIsNotCanonical) {
  for (const char* const text : {"", "E621E1F8", "E621E1F8C36C495A93FC0C247A3E6E5F",
                                 "E621E1F8-C36C-495A-93FC-0C247A3E6E5", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F0",
                                 "{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}", "G621E1F8-C36C-495A-93FC-0C247A3E6E5F",
                                 "E621E1F80C36C-495A-93FC-0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5:",
                                 "\xC3\xA9"
                                 "21E1F8-C36C-495A-93FC-0C247A3E6E5F0"}) {
    EXPECT_FALSE(makeUuid(text)) << text;
  }
}

TEST(Uuids, MadeFromBytesAndTextAreOneObject) {
  platform::desktop::Uuid bytes{};
  std::memcpy(bytes.data(), &kUuidBytes, sizeof kUuidBytes);
  const Uuid uuid = Uuid::adopt(platform::makeUuid(bytes));
  EXPECT_EQ(uuid.get(), makeUuid(kUuidText).get());
  EXPECT_EQ(platform::bytesOf(uuid.get()), bytes);
}

TEST(Uuids, AreMadeAndReleasedByManyThreadsAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 5000;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  std::array<int, kThreads> wrong{};
  for (int& mistakes : wrong) {
    threads.emplace_back([&mistakes] {
      for (int i = 0; i < kRounds; ++i) {
        const Uuid first = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
        const Uuid second = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
        mistakes += static_cast<int>(first.get() != second.get());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(wrong, testing::Each(0));
  EXPECT_EQ(CFGetRetainCount(makeUuid(kUuidText).get()), 1);
}

}  // namespace
}  // namespace core_foundation_test
