// The members that members.txt calls special, the overloads that share a name, and the resolver.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "host/host_calls.h"
#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace slots = host::slots;

template <typename... Slots>
void forget() {
  ((Slots::address = nullptr), ...);
}

std::uint64_t bitsOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

// The type of a member, of those that members.txt calls special.
static_assert(std::is_same_v<decltype(&REALGetStringContents), const char* (*)(REALstringStruct*, std::int64_t*)>);
static_assert(std::is_same_v<decltype(&REALStringLength), std::int64_t (*)(REALstringStruct*)>);
static_assert(std::is_same_v<decltype(&REALLoadFrameworkMethod), void* (*)(const char*)>);
static_assert(std::is_same_v<decltype(&REALLoadGlobalMethod), void* (*)(const void*, const char*)>);

// --- the resolver

TEST(CallResolver, PassesTheNameOnAndCachesNothing) {
  static std::vector<const char*> received;
  const RecordingHost host;  // restores the resolver at the end
  gResolver = [](const char* name) -> void* {
    received.push_back(name);
    return reinterpret_cast<void*>(&recordCall);
  };
  const char name[] = "any name, even \xFF";
  EXPECT_EQ(CallResolver(name), reinterpret_cast<void*>(&recordCall));
  EXPECT_EQ(CallResolver(name), reinterpret_cast<void*>(&recordCall));
  EXPECT_THAT(received, ElementsAre(name, name));
}

TEST(CallResolver, EndsTheProcessWithoutAResolver) {
  const RecordingHost host;
  gResolver = nullptr;
  EXPECT_DEATH(CallResolver("entry"), "");
}

// --- contents and length of strings

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

class StringContents : public ::testing::Test {
 protected:
  StringContents() {
    forget<slots::REALGetStringContents, slots::REALGetStringContentsLength, slots::REALStringLength,
           slots::REALLoadFrameworkMethod>();
    gCalls.clear();
    gHasLengthMethod = true;
  }

  void offerAll() {
    host_.offer("StringGetCString", &stringGetCString);
    host_.offer("REALLoadGlobalMethod", &loadGlobalMethod);
  }

  RecordingHost host_;
};

TEST_F(StringContents, AreNullForANullStringWithoutALookUp) {
  offerAll();
  std::int64_t length = 42;
  EXPECT_EQ(REALGetStringContents(nullptr, &length), nullptr);
  EXPECT_EQ(length, 42);
  EXPECT_THAT(host_.asked(), IsEmpty());
  EXPECT_THAT(gCalls, IsEmpty());
}

TEST_F(StringContents, AreReadAfterThe64BitLength) {
  offerAll();
  std::int64_t length = 0;
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_EQ(length, 0x1'0000'0004);
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString", "REALLoadGlobalMethod"));
  EXPECT_THAT(gCalls, ElementsAre("load", "length", "contents"));
}

TEST_F(StringContents, LookUpNothingTheSecondTime) {
  offerAll();
  std::int64_t length = 0;
  REALGetStringContents(kString, nullptr);
  host_.forgetAsked();
  gCalls.clear();
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_THAT(host_.asked(), IsEmpty());
  EXPECT_THAT(gCalls, ElementsAre("length", "contents"));
}

TEST_F(StringContents, LoadButDoNotCallTheLengthMethodWithoutALengthPointer) {
  offerAll();
  EXPECT_STREQ(REALGetStringContents(kString, nullptr), "ab");
  EXPECT_THAT(gCalls, ElementsAre("load", "contents"));
}

TEST_F(StringContents, AreReturnedWithoutALengthMethod) {
  offerAll();
  gHasLengthMethod = false;
  std::int64_t length = 42;
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_EQ(length, 42);
  EXPECT_THAT(gCalls, ElementsAre("load", "contents", "load", "contents")) << "the method is loaded at each call";
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString", "REALLoadGlobalMethod"));
}

TEST_F(StringContents, AreReturnedWithoutGlobalMethods) {
  host_.offer("StringGetCString", &stringGetCString);
  std::int64_t length = 42;
  EXPECT_STREQ(REALGetStringContents(kString, &length), "ab");
  EXPECT_EQ(length, 42);
}

TEST_F(StringContents, AreNullWithALengthWithoutTheContentsEntry) {
  host_.offer("REALLoadGlobalMethod", &loadGlobalMethod);
  std::int64_t length = 0;
  EXPECT_EQ(REALGetStringContents(kString, &length), nullptr);
  EXPECT_EQ(length, 0x1'0000'0004);
  EXPECT_EQ(REALGetStringContents(kString, &length), nullptr);
  EXPECT_THAT(host_.asked(), ElementsAre("StringGetCString", "REALLoadGlobalMethod", "StringGetCString"));
}

TEST_F(StringContents, HaveALengthMethodOfTheirOwn) {
  offerAll();
  REALGetStringContents(kString, nullptr);
  gCalls.clear();
  EXPECT_EQ(REALStringLength(kString), 0x1'0000'0004);
  EXPECT_EQ(REALStringLength(kString), 0x1'0000'0004);
  EXPECT_THAT(gCalls, ElementsAre("load", "length", "length"));
}

TEST_F(StringContents, HaveLength0WithoutALengthMethod) {
  offerAll();
  gHasLengthMethod = false;
  EXPECT_EQ(REALStringLength(kString), 0);
  EXPECT_EQ(REALStringLength(kString), 0);
  EXPECT_THAT(gCalls, ElementsAre("load", "load"));
}

// --- global methods

TEST(LoadFrameworkMethod, PassesANullModule) {
  RecordingHost host;
  forget<slots::REALLoadFrameworkMethod>();
  EXPECT_EQ(REALLoadFrameworkMethod("Beep()"), nullptr) << "the host lacks the entry";
  host.offer("REALLoadGlobalMethod", &recordCall);
  gRecorded.integers[0] = 1;
  gResult = 0x7182'8384'8586'8788;
  const char* const declaration = "Beep()";
  EXPECT_EQ(REALLoadFrameworkMethod(declaration), reinterpret_cast<void*>(gResult));
  EXPECT_EQ(REALLoadFrameworkMethod(declaration), reinterpret_cast<void*>(gResult));
  EXPECT_THAT(host.asked(), ElementsAre("REALLoadGlobalMethod", "REALLoadGlobalMethod"));
  EXPECT_EQ(gRecorded.count, 2);
  EXPECT_EQ(gRecorded.integers[0], 0U);
  EXPECT_EQ(gRecorded.integers[1], bitsOf(declaration));
}

TEST(LoadGlobalMethod, PassesANullModuleForAnyModule) {
  RecordingHost host;
  forget<slots::REALLoadFrameworkMethod>();
  host.offer("REALLoadGlobalMethod", &recordCall);
  gRecorded.integers[0] = 1;
  gResult = 0x1234;
  EXPECT_EQ(REALLoadGlobalMethod(sample<void*>(1), "Beep()"), reinterpret_cast<void*>(0x1234));
  EXPECT_EQ(gRecorded.integers[0], 0U);
  REALLoadFrameworkMethod("Beep()");
  EXPECT_THAT(host.asked(), ElementsAre("REALLoadGlobalMethod")) << "both share one slot";
}

// --- Boolean properties

std::uint8_t gHostByte = 0;

bool getByte(REALobjectStruct* /*object*/, const char* /*name*/, std::uint8_t* value) {
  *value = gHostByte;
  return gResult != 0;
}

TEST(GetPropValueBoolean, StoresTheHostsByteAsTrueOrFalse) {
  RecordingHost host;
  forget<slots::REALGetPropValueBoolean>();
  host.offer("REALGetPropValueBool", &getByte);
  for (const int byte : {0, 1, 2, 0x80, 0xFF}) {
    gResult = byte % 2 == 0 ? 1 : 0;  // the byte is stored even when the host reports failure
    gHostByte = static_cast<std::uint8_t>(byte);
    std::uint8_t found = 0xAA;
    static_assert(sizeof(bool) == 1);
    EXPECT_EQ(REALGetPropValueBoolean(sample<REALobjectStruct*>(1), "Name", reinterpret_cast<bool*>(&found)),
              gResult != 0);
    EXPECT_EQ(found, byte != 0 ? 1 : 0);
  }
}

TEST(GetPropValueBoolean, StoresFalseWhenTheHostWritesNothing) {
  RecordingHost host;
  forget<slots::REALGetPropValueBoolean>();
  bool value = true;
  EXPECT_FALSE(REALGetPropValueBoolean(sample<REALobjectStruct*>(1), "Name", &value));
  EXPECT_TRUE(value) << "stays as it was without the entry";
  host.offer("REALGetPropValueBool", &recordCall);
  gResult = 0x2;
  EXPECT_TRUE(REALGetPropValueBoolean(sample<REALobjectStruct*>(1), "Name", &value));
  EXPECT_FALSE(value);
}

// --- overloads

void* recordingProcedure(REALarrayStruct* /*array*/) { return reinterpret_cast<void*>(&recordCall); }

/// `call` must reach the entry of `Slot` and no other, and the host must find `expected` in its registers, in order.
template <typename Slot>
void expectReaches(const std::function<void()>& call, const std::vector<Expected>& expected) {
  SCOPED_TRACE(Slot::kEntry);
  const std::string entry = Slot::kEntry;
  RecordingHost host;
  Slot::address = nullptr;
  if (entry.ends_with("Proc")) {
    host.offer(entry, &recordingProcedure);
  } else {
    host.offer(entry, &recordCall);
  }
  call();
  EXPECT_THAT(host.asked(), ElementsAre(entry));
  ASSERT_EQ(gRecorded.count, 1);
  std::size_t integers = 0;
  std::size_t floats = 0;
  for (const Expected& argument : expected) {
    const std::uint64_t found =
        argument.floating ? std::bit_cast<std::uint64_t>(gRecorded.floats[floats++]) : gRecorded.integers[integers++];
    EXPECT_EQ(found & argument.mask, argument.bits);
  }
}

REALobjectStruct* const kObject = sample<REALobjectStruct*>(1);
REALarrayStruct* const kArray = sample<REALarrayStruct*>(2);
const char* const kName = "Title";

template <typename Slot, typename T>
void expectGets() {
  T value{};
  expectReaches<Slot>([&] { REALGetPropValue(kObject, kName, &value); },
                      {expectedOf(kObject), expectedOf(kName), expectedOf(&value)});
}

template <typename Slot, typename T>
void expectSets() {
  const T value = sample<T>(3);
  expectReaches<Slot>([&] { REALSetPropValue(kObject, kName, value); },
                      {expectedOf(kObject), expectedOf(kName), expectedOf(value)});
}

template <typename Slot, typename T>
void expectGetsElement() {
  T value{};
  expectReaches<Slot>([&] { REALGetArrayValue(kArray, 5, &value); }, {expectedOf(kArray), expectedOf(5LL)});
}

template <typename Slot, typename T>
void expectSetsElement() {
  const T value = sample<T>(3);
  expectReaches<Slot>([&] { REALSetArrayValue(kArray, 5, value); },
                      {expectedOf(kArray), expectedOf(value), expectedOf(5LL)});
}

template <typename Slot, typename T>
void expectInsertsElement() {
  const T value = sample<T>(3);
  expectReaches<Slot>([&] { REALInsertArrayValue(kArray, 5, value); },
                      {expectedOf(kArray), expectedOf(5LL), expectedOf(value)});
}

TEST(Overloads, GetPropValueFollowsTheTypeOfTheValue) {
  expectGets<slots::REALGetPropValueInt16, short>();
  expectGets<slots::REALGetPropValueUInt16, unsigned short>();
  expectGets<slots::REALGetPropValueDouble, double>();
  expectGets<slots::REALGetPropValueSingle, float>();
  expectGets<slots::REALGetPropValueString, REALstringStruct*>();
  expectGets<slots::REALGetPropValueObject, REALobjectStruct*>();
  expectGets<slots::REALGetPropValueCFStringRef, CFStringRef>();
}

TEST(Overloads, SetPropValueFollowsTheTypeOfTheValue) {
  expectSets<slots::REALSetPropValueString, REALstringStruct*>();
  expectSets<slots::REALSetPropValueDouble, double>();
  expectSets<slots::REALSetPropValuePtr, REALobjectStruct*>();  // deliberately not the Object setter
  expectSets<slots::REALSetPropValueUInt16, unsigned short>();
  expectSets<slots::REALSetPropValueInt16, short>();
  expectSets<slots::REALSetPropValueSingle, float>();
  expectSets<slots::REALSetPropValueCString, const char*>();
  expectSets<slots::REALSetPropValueWString, const wchar_t*>();
  expectSets<slots::REALSetPropValueCFStringRef, CFStringRef>();
}

TEST(Overloads, InsertArrayValueFollowsTheTypeOfTheValue) {
  expectInsertsElement<slots::REALInsertArrayValueInt16, short>();
  expectInsertsElement<slots::REALInsertArrayValueUInt16, unsigned short>();
  expectInsertsElement<slots::REALInsertArrayValueDouble, double>();
  expectInsertsElement<slots::REALInsertArrayValueSingle, float>();
  expectInsertsElement<slots::REALInsertArrayValueString, REALstringStruct*>();
  expectInsertsElement<slots::REALInsertArrayValueObject, REALobjectStruct*>();
}

TEST(Overloads, SetArrayValueFollowsTheTypeOfTheValue) {
  expectSetsElement<slots::REALSetArrayValueInt16, short>();
  expectSetsElement<slots::REALSetArrayValueUInt16, unsigned short>();
  expectSetsElement<slots::REALSetArrayValueDouble, double>();
  expectSetsElement<slots::REALSetArrayValueSingle, float>();
  expectSetsElement<slots::REALSetArrayValueString, REALstringStruct*>();
  expectSetsElement<slots::REALSetArrayValueObject, REALobjectStruct*>();
  expectSetsElement<slots::REALSetArrayValueText, const RuntimeText*>();
}

TEST(Overloads, GetArrayValueFollowsTheTypeOfTheValue) {
  expectGetsElement<slots::REALGetArrayValueInt16, short>();
  expectGetsElement<slots::REALGetArrayValueUInt16, unsigned short>();
  expectGetsElement<slots::REALGetArrayValueString, REALstringStruct*>();
  expectGetsElement<slots::REALGetArrayValueText, const RuntimeText*>();
  expectGetsElement<slots::REALGetArrayValueObject, REALobjectStruct*>();
  expectGetsElement<slots::REALGetArrayValueDouble, double>();
  expectGetsElement<slots::REALGetArrayValueSingle, float>();
}

TEST(Overloads, NewInstanceOfAClassReferenceReachesTheEntryForClasses) {
  auto* const class_ref = sample<REALclassRefStruct*>(1);
  expectReaches<slots::REALnewInstanceWithClass>([&] { REALnewInstance(class_ref); }, {expectedOf(class_ref)});
}

TEST(Overloads, BuildStringWithAnEncodingReachesTheEntryWithOne) {
  const char* const text = "abc";
  const std::vector<Expected> expected = {expectedOf(text), expectedOf(3), expectedOf(0x08000100)};
  using Slot = slots::REALBuildStringWithEncoding;
  expectReaches<Slot>([&] { REALBuildString(text, 3, 0x08000100U); }, expected);
  expectReaches<Slot>([&] { REALBuildString(text, std::string(text).size(), 0x08000100); }, expected);
  expectReaches<Slot>([] { REALBuildString(NULL, 0, 0); }, {expectedOf(0LL), expectedOf(0), expectedOf(0)});
  expectReaches<slots::REALBuildString>([&] { REALBuildString(text, 3); }, {expectedOf(text), expectedOf(3)});
}

TEST(Overloads, LockPictureDescriptionOfTwoPointersReachesTheEntryForNativeTypes) {
  auto* const picture = sample<REALobjectStruct*>(1);
  auto* const description = sample<REALpictureDescription*>(2);
  using Slot = slots::REALLockPictureDescriptionWithNativeType;
  expectReaches<Slot>(
      [&] {
        gResult = 0x100;
        EXPECT_EQ(REALLockPictureDescription(picture, description), 0x100);
      },
      {expectedOf(picture), expectedOf(description)});
  expectReaches<Slot>([&] { REALLockPictureDescription(picture, NULL); }, {expectedOf(picture), expectedOf(0LL)});
  expectReaches<Slot>([&] { REALLockPictureDescription(0, 0); }, {expectedOf(0LL), expectedOf(0LL)});
  expectReaches<slots::REALLockPictureDescription>(
      [&] {
        gResult = 0x100;
        EXPECT_FALSE(REALLockPictureDescription(picture, description, 3));
      },
      {expectedOf(picture), expectedOf(description), expectedOf(3)});
}

TEST(Overloads, FolderItemFromParentFSRefTakesReferences) {
  auto* const parent = sample<const FSRef*>(1);
  auto* const name = sample<const HFSUniStr255*>(2);
  expectReaches<slots::REALFolderItemFromParentFSRef>([&] { REALFolderItemFromParentFSRef(*parent, *name); },
                                                      {expectedOf(parent), expectedOf(name)});
}

// --- members without a fixed argument list

TEST(AnyArguments, ShareOneSlot) {
  RecordingHost host;
  forget<slots::REALMessageBox>();
  host.offer("RuntimeMsgBox", &recordCall);
  REALMessageBox();
  REALMessageBox(1);
  REALMessageBox("text", 2.5, std::uint16_t{3});
  EXPECT_EQ(gRecorded.count, 3);
  EXPECT_THAT(host.asked(), ElementsAre("RuntimeMsgBox"));
}

TEST(AnyArguments, MayBeStructuresByValue) {
  struct Point {
    std::int64_t x;
    std::int64_t y;
  };
  static Point received;
  const auto entry = +[](Point point, int number) {
    received = {point.x, point.y + number};
    return std::int64_t{1};
  };
  RecordingHost host;
  forget<slots::REALSetControlPosition>();
  host.offer("ctlPosSetter", entry);
  REALSetControlPosition(Point{11, 22}, 3);
  EXPECT_EQ(received.x, 11);
  EXPECT_EQ(received.y, 25);
}

TEST(AnyArguments, MayOutnumberTheRegisters) {
  static std::int64_t received = 0;
  const auto entry = +[](std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d, std::int64_t e, std::int64_t f,
                         std::int64_t g, std::int64_t h, std::int64_t i, std::int64_t j) {
    received = a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f + 7 * g + 8 * h + 9 * i + 10 * j;
  };
  RecordingHost host;
  forget<slots::REALDrawPicturePrimitive>();
  host.offer("drawPicturePrimitive", entry);
  REALDrawPicturePrimitive(1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL, 9LL, 10LL);
  EXPECT_EQ(received, 385);
}

// --- definition records

/// A record of the host as raw memory, longer than its type here.
struct RawRecord {
  alignas(8) std::array<unsigned char, 256> bytes;

  RawRecord() { bytes.fill(0xA5); }
  template <typename T>
  void put(std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
  }
  template <typename T>
  T* as() {
    return reinterpret_cast<T*>(bytes.data());
  }
};

TEST(ClassData, BeginsAtTheOffsetInByte32) {
  RawRecord record;
  auto* const definition = record.as<REALclassDefinition>();
  char instance[64];
  for (const std::int64_t offset : {std::int64_t{40}, std::int64_t{-8}, std::int64_t{0x1'0000'0010}}) {
    record.put(32, offset);
    EXPECT_EQ(bitsOf(REALGetClassData(instance, definition)), bitsOf(instance) + static_cast<std::uint64_t>(offset));
    EXPECT_EQ(bitsOf(REALGetClassData(nullptr, definition)), static_cast<std::uint64_t>(offset));
  }
}

TEST(ControlData, BeginsAtTheOffsetInByte104) {
  RawRecord record;
  record.put(104, std::int64_t{24});
  char instance[64];
  EXPECT_EQ(REALGetControlData(instance, record.as<REALcontrolDefinition>()), instance + 24);
}

/// Changes the flags at offset 160 from `before`; nothing else of the record may change.
std::uint32_t flagsAfter(REALclassDefinition* (*change)(REALclassDefinition*), std::uint32_t before) {
  RawRecord record;
  record.put(160, before);
  RawRecord expected = record;
  EXPECT_EQ(change(record.as<REALclassDefinition>()), record.as<REALclassDefinition>());
  std::uint32_t after = 0;
  std::memcpy(&after, record.bytes.data() + 160, sizeof after);
  expected.put(160, after);
  EXPECT_EQ(record.bytes, expected.bytes);
  return after;
}

TEST(SetClassConsoleSafe, SetsOneBit) {
  EXPECT_EQ(flagsAfter(&SetClassConsoleSafe, 0), 0x4U);
  EXPECT_EQ(flagsAfter(&SetClassConsoleSafe, 0x4), 0x4U);
  EXPECT_EQ(flagsAfter(&SetClassConsoleSafe, 0xFFFFFFFB), 0xFFFFFFFFU);
}

TEST(SetClassWebOnly, SetsOneBitAndClearsAnother) {
  EXPECT_EQ(flagsAfter(&SetClassWebOnly, 0x0000000C), 0x00000104U);
  EXPECT_EQ(flagsAfter(&SetClassWebOnly, 0), 0x100U);
  EXPECT_EQ(flagsAfter(&SetClassWebOnly, 0xFFFFFFFF), 0xFFFFFFF7U);
}

}  // namespace
