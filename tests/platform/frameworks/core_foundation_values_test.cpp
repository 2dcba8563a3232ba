// CoreFoundation's types over the system's Foundation, one after another, besides tests/conformance.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "conformance/objects.h"
#include "frameworks/CoreFoundation/uuids.h"
#include "platform/frameworks/foundation_probe.h"

namespace core_foundation_test {
namespace {

using conformance::kUuidBytes;
using conformance::kUuidText;
using conformance::makeDictionary;
using conformance::makeNumber;
using conformance::makePart;
using conformance::makeReal;
using conformance::makeUuid;
using conformance::Number;
using conformance::read64;
using conformance::String;
using conformance::textOf;
using conformance::Url;
using conformance::Uuid;

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

TEST(StringCreate, ReturnsNullForInvalidArguments) {
  const UInt8 bytes[] = {'a'};
  constexpr CFStringEncoding kMacRoman = 0;
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, false), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, -1, kCFStringEncodingUTF8, false), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, 1, kMacRoman, false), nullptr);
}

TEST(StringGetCString, ReturnsFalseForInvalidArguments) {
  char buffer[8];
  EXPECT_FALSE(CFStringGetCString(CFSTR("abc"), buffer, -1, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(CFSTR("abc"), nullptr, 8, kCFStringEncodingUTF8));
}

TEST(SubstringDeath, AbortsOutsideTheString) {
  EXPECT_DEATH(makePart(CFSTR("abc"), 2, 2), "CFStringCreateWithSubstring: range out of bounds");
  EXPECT_DEATH(makePart(CFSTR("abc"), -1, 1), "CFStringCreateWithSubstring: range out of bounds");
  EXPECT_DEATH(makePart(CFSTR("abc"), 0, -1), "CFStringCreateWithSubstring: range out of bounds");
}

// --- URLs

TEST(UrlCreate, ReturnsNullForAnotherPathStyle) {
  EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/tmp"), static_cast<CFURLPathStyle>(2), false), nullptr);
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  EXPECT_EQ(CFURLCopyFileSystemPath(url.get(), static_cast<CFURLPathStyle>(2)), nullptr);
}

// --- data

TEST(DataCreate, ReturnsNullForInvalidArguments) {
  const UInt8 byte = 1;
  EXPECT_EQ(CFDataCreate(nullptr, nullptr, 1), nullptr);
  EXPECT_EQ(CFDataCreate(nullptr, &byte, -1), nullptr);
}

// --- dictionaries

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

// --- numbers

TEST(Numbers, SaturateAtTheWidth) {
  EXPECT_THAT(read64(makeReal(1e30).get()), testing::Pair(false, INT64_MAX));
  EXPECT_THAT(read64(makeReal(-1e30).get()), testing::Pair(false, INT64_MIN));
}

TEST(Numbers, AreTruncatedWithFalseWhenUnsigned) {
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(UINT64_MAX)).get()), testing::Pair(false, -1));
}

TEST(Numbers, FailForAnUnknownType) {
  const float value = 1;
  float read = 2;
  constexpr auto kFloat = static_cast<CFNumberType>(12);
  EXPECT_EQ(CFNumberCreate(nullptr, kFloat, &value), nullptr);
  EXPECT_FALSE(CFNumberGetValue(makeNumber(1).get(), kFloat, &read));
  EXPECT_EQ(read, 2);
}

// --- UUIDs

TEST(Uuids, AreRecreatedAfterTheLastRelease) {
  for (int round = 0; round < 3; ++round) {
    const Uuid uuid = makeUuid(kUuidText);
    EXPECT_EQ(CFGetRetainCount(uuid.get()), 1);
    EXPECT_EQ(textOf(String::adopt(CFUUIDCreateString(nullptr, uuid.get())).get()), kUuidText);
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
