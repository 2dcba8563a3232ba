#include "host/strings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kLengthMethod[] = "LenB( s as string ) as integer";
REALstringStruct* const kString = sample<REALstringStruct*>(1);

/// What the host below was called for, in order.
std::vector<std::string> gCalls;
bool gHasLengthMethod = true;

const char* stringGetCString(REALstringStruct* string) {
  gCalls.emplace_back("contents");
  return string == kString ? "ab\0c" : "another";
}

std::int64_t lenB(REALstringStruct* string) {
  gCalls.emplace_back("length");
  return string == kString ? 0x1'0000'0004 : 7;
}

void* loadGlobalMethod(void* module, const char* declaration) {
  gCalls.emplace_back("load");
  EXPECT_EQ(module, nullptr);
  EXPECT_STREQ(declaration, kLengthMethod);
  return gHasLengthMethod ? reinterpret_cast<void*>(&lenB) : nullptr;
}

class StringCalls : public ::testing::Test {
 protected:
  StringCalls() {
    namespace slots = host::slots;
    for (void** slot :
         {&slots::REALGetStringContents::address, &slots::REALGetStringContentsLength::address,
          &slots::REALStringLength::address, &slots::REALLoadFrameworkMethod::address, &slots::REALCString::address,
          &slots::REALBuildString::address, &slots::REALBuildStringWithEncoding::address,
          &slots::REALCopyStringCFString::address, &slots::REALGetStringCFString::address,
          &slots::REALUnlockString::address, &slots::REALGetSystemTextEncoding::address}) {
      *slot = nullptr;
    }
    gCalls.clear();
    gHasLengthMethod = true;
  }

  void offerAll() {
    host_.offer("StringGetCString", &stringGetCString);
    host_.offer("REALLoadGlobalMethod", &loadGlobalMethod);
  }

  RecordingHost host_;
};

TEST_F(StringCalls, ContentsOfNullAreNullWithoutALookUpOrALength) {
  offerAll();
  std::int64_t length = 42;
  EXPECT_EQ(REALGetStringContents(nullptr, &length), nullptr);
  EXPECT_EQ(length, 42);
  EXPECT_THAT(host_.asked(), IsEmpty());
  EXPECT_THAT(gCalls, IsEmpty());
}

TEST_F(StringCalls, ContentsComeAfterTheLengthWhichIsAll64Bits) {
  offerAll();
  std::int64_t length = 0;
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_EQ(length, 0x1'0000'0004);
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString", "REALLoadGlobalMethod"));
  EXPECT_THAT(gCalls, ElementsAre("load", "length", "contents"));
}

TEST_F(StringCalls, ContentsLookNothingUpTheSecondTime) {
  offerAll();
  std::int64_t length = 0;
  REALGetStringContents(kString, nullptr);
  host_.forgetAsked();
  gCalls.clear();
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_THAT(host_.asked(), IsEmpty());
  EXPECT_THAT(gCalls, ElementsAre("length", "contents"));
}

TEST_F(StringCalls, ContentsWithoutAPlaceForTheLengthLoadTheMethodButDoNotCallIt) {
  offerAll();
  EXPECT_STREQ(REALGetStringContents(kString, nullptr), "ab");
  EXPECT_THAT(gCalls, ElementsAre("load", "contents"));
}

TEST_F(StringCalls, ContentsAreThereEvenIfTheHostCannotCountThem) {
  offerAll();
  gHasLengthMethod = false;
  std::int64_t length = 42;
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_EQ(length, 42);
  EXPECT_THAT(gCalls, ElementsAre("load", "contents", "load", "contents")) << "the method is asked for again";
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString", "REALLoadGlobalMethod"));
}

TEST_F(StringCalls, ContentsAreThereEvenIfTheHostHasNoMethodsAtAll) {
  host_.offer("StringGetCString", &stringGetCString);
  std::int64_t length = 42;
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_EQ(length, 42);
}

TEST_F(StringCalls, ContentsAreNullButTheLengthIsThereIfTheHostCanOnlyCount) {
  host_.offer("REALLoadGlobalMethod", &loadGlobalMethod);
  std::int64_t length = 0;
  EXPECT_EQ(REALGetStringContents(kString, &length), nullptr);
  EXPECT_EQ(length, 0x1'0000'0004);
  EXPECT_EQ(REALGetStringContents(kString, &length), nullptr);
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString", "REALLoadGlobalMethod", "StringGetCString"));
}

TEST_F(StringCalls, ContentsAndCStringFindTheSameEntryEachForItself) {
  offerAll();
  REALGetStringContents(kString, nullptr);
  host_.forgetAsked();
  EXPECT_EQ(REALCString(kString), reinterpret_cast<std::intptr_t>(stringGetCString(kString)));
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString"));
}

TEST_F(StringCalls, TheTwoCFStringMembersFindTheSameEntryEachForItself) {
  host_.offer("REALGetStringCFString", &recordCall);
  REALGetStringCFString(kString);
  REALCopyStringCFString(kString);
  EXPECT_THAT(host_.asked(), ElementsAre("REALGetStringCFString", "REALGetStringCFString"));
  EXPECT_EQ(gRecorded.count, 2);
}

TEST_F(StringCalls, LengthIsTheHostsMethodInASlotOfItsOwn) {
  offerAll();
  REALGetStringContents(kString, nullptr);
  gCalls.clear();
  EXPECT_EQ(REALStringLength(kString), 0x1'0000'0004);
  EXPECT_EQ(REALStringLength(kString), 0x1'0000'0004);
  EXPECT_THAT(gCalls, ElementsAre("load", "length", "length"));
}

TEST_F(StringCalls, LengthIsZeroAndAskedForAgainWhileTheHostHasNoMethodForIt) {
  offerAll();
  gHasLengthMethod = false;
  EXPECT_EQ(REALStringLength(kString), 0);
  EXPECT_EQ(REALStringLength(kString), 0);
  EXPECT_THAT(gCalls, ElementsAre("load", "load"));
}

TEST_F(StringCalls, BuildStringWithAnEncodingReachesTheEntryThatTakesOne) {
  host_.offer("REALBuildStringWithEncoding", &recordCall);
  gAnswer = 0x1234;
  EXPECT_EQ(REALBuildString("abc", 3, 0x08000100U), reinterpret_cast<REALstringStruct*>(0x1234));
  EXPECT_THAT(host_.asked(), ElementsAre("REALBuildStringWithEncoding"));
  EXPECT_STREQ(reinterpret_cast<const char*>(gRecorded.integers[0]), "abc");
  EXPECT_EQ(gRecorded.integers[1] & 0xFFFFFFFF, 3U);
  EXPECT_EQ(gRecorded.integers[2] & 0xFFFFFFFF, 0x08000100U);
}

TEST_F(StringCalls, BuildStringWithAnEncodingOfAnotherIntegerTypeReachesTheSameEntry) {
  REALBuildString("abc", std::string("abc").size(), 0x08000100);
  REALBuildString("abc", 3, kCFStringEncodingUTF8);
  REALBuildString(NULL, 0, 0);
  EXPECT_EQ(host_.asked(), std::vector<std::string>(3, "REALBuildStringWithEncoding"));
}

TEST_F(StringCalls, BuildStringWithoutAnEncodingReachesItsOwnEntry) {
  REALBuildString("abc", 3);
  EXPECT_THAT(host_.asked(), ElementsAre("REALBuildString"));
}

TEST_F(StringCalls, UnlockPassesNullOn) {
  host_.offer("REALUnlockString", &recordCall);
  gRecorded.integers[0] = 1;
  REALUnlockString(nullptr);
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], 0U);
}

TEST_F(StringCalls, SystemTextEncodingIsUtf8AndAskedForAgainOnEveryCallWhileTheHostLacksIt) {
  EXPECT_EQ(REALGetSystemTextEncoding(), 0x08000100U);
  EXPECT_EQ(REALGetSystemTextEncoding(), 0x08000100U);
  EXPECT_EQ(REALGetSystemTextEncoding(), 0x08000100U);
  EXPECT_EQ(host_.asked(), std::vector<std::string>(3, "REALGetSystemTextEncoding"));
}

TEST_F(StringCalls, SystemTextEncodingIsWhatTheHostSaysEvenIfThatIsZero) {
  host_.offer("REALGetSystemTextEncoding", &recordCall);
  gAnswer = 0xFFFF'FFFF'0000'0000;
  EXPECT_EQ(REALGetSystemTextEncoding(), 0U);
}

}  // namespace
