// Properties and variants, beyond what members.txt says of them one by one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "host/property_getters.h"
#include "host/property_setters.h"
#include "host/variants.h"
#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;

REALobjectStruct* const kObject = sample<REALobjectStruct*>(1);
constexpr char kName[] = "Title";

std::uint8_t gHostByte = 0;

bool getByte(REALobjectStruct* /*object*/, const char* /*name*/, std::uint8_t* value) {
  *value = gHostByte;
  return gAnswer != 0;
}

TEST(PropertyGetters, DisagreeOnAHostResultWhoseLowByteIsZero) {
  RecordingHost host;
  host::slots::REALGetPropValueInt32::address = nullptr;
  host::slots::REALGetPropValueInt64::address = nullptr;
  host.offer("REALGetPropValueInt", &recordCall);
  host.offer("REALGetPropValueInt64", &recordCall);
  gAnswer = 0x100;
  std::int32_t narrow = 0;
  std::int64_t wide = 0;
  EXPECT_TRUE(REALGetPropValueInt32(kObject, kName, &narrow));
  EXPECT_FALSE(REALGetPropValueInt64(kObject, kName, &wide));
}

TEST(GetPropValueBoolean, IsTrueForAnyByteThatIsNotZero) {
  RecordingHost host;
  host::slots::REALGetPropValueBoolean::address = nullptr;
  host.offer("REALGetPropValueBool", &getByte);
  gAnswer = 1;
  for (const int byte : {0, 1, 2, 0x80, 0xFF}) {
    gHostByte = static_cast<std::uint8_t>(byte);
    std::uint8_t found = 0xAA;
    static_assert(sizeof(bool) == 1);
    EXPECT_TRUE(REALGetPropValueBoolean(kObject, kName, reinterpret_cast<bool*>(&found)));
    EXPECT_EQ(found, byte != 0 ? 1 : 0);
  }
}

TEST(GetPropValueBoolean, StoresTheByteEvenWhenTheHostReportsFailure) {
  RecordingHost host;
  host::slots::REALGetPropValueBoolean::address = nullptr;
  host.offer("REALGetPropValueBool", &getByte);
  gAnswer = 0;
  gHostByte = 1;
  bool value = false;
  EXPECT_FALSE(REALGetPropValueBoolean(kObject, kName, &value));
  EXPECT_TRUE(value);
}

TEST(GetPropValueBoolean, StoresFalseWhenTheHostWritesNothing) {
  RecordingHost host;
  host::slots::REALGetPropValueBoolean::address = nullptr;
  host.offer("REALGetPropValueBool", &recordCall);
  gAnswer = 0x2;
  bool value = true;
  EXPECT_TRUE(REALGetPropValueBoolean(kObject, kName, &value));
  EXPECT_FALSE(value);
}

TEST(GetPropValueBoolean, LeavesTheValueAloneWhileTheHostLacksTheEntry) {
  RecordingHost host;
  host::slots::REALGetPropValueBoolean::address = nullptr;
  bool value = true;
  EXPECT_FALSE(REALGetPropValueBoolean(kObject, kName, &value));
  EXPECT_TRUE(value);
}

TEST(SetPropValueUInt8, GoesToTheBooleanSetterThroughASlotOfItsOwn) {
  RecordingHost host;
  host::slots::REALSetPropValueBoolean::address = nullptr;
  host::slots::REALSetPropValueUInt8::address = nullptr;
  host.offer("REALSetPropValueBoolean", &recordCall);
  REALSetPropValueBoolean(kObject, kName, true);
  REALSetPropValueUInt8(kObject, kName, 0xFE);
  EXPECT_EQ(gRecorded.integers[2] & 0xFFFFFFFF, 0xFEU);
  EXPECT_THAT(host.asked(), ElementsAre("REALSetPropValueBoolean", "REALSetPropValueBoolean"));
}

TEST(BooleanArguments, ReachTheHostAsZeroOrOne) {
  RecordingHost host;
  host::slots::REALSetPropValueBoolean::address = nullptr;
  host::slots::REALNewVariantBoolean::address = nullptr;
  host.offer("REALSetPropValueBoolean", &recordCall);
  host.offer("BooleanToVariant", &recordCall);
  for (const bool value : {true, false}) {
    REALSetPropValueBoolean(kObject, kName, value);
    EXPECT_EQ(gRecorded.integers[2] & 0xFFFFFFFF, value ? 1U : 0U);
    REALNewVariantBoolean(value);
    EXPECT_EQ(gRecorded.integers[0] & 0xFFFFFFFF, value ? 1U : 0U);
  }
}

// --- Overloads

/// `call` must reach the member of `Slot`, and through it the host, and come back with the host's true.
template <typename Slot>
void expectReaches(const std::function<bool()>& call) {
  RecordingHost host;
  Slot::address = nullptr;
  host.offer(Slot::kEntry, &recordCall);
  gAnswer = 2;
  EXPECT_TRUE(call());
  EXPECT_THAT(host.asked(), ElementsAre(Slot::kEntry));
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], reinterpret_cast<std::uintptr_t>(kObject));
  EXPECT_EQ(gRecorded.integers[1], reinterpret_cast<std::uintptr_t>(kName));
}

template <typename Slot, typename T>
void expectGetterReaches() {
  T value{};
  expectReaches<Slot>([&] { return REALGetPropValue(kObject, kName, &value); });
  EXPECT_EQ(gRecorded.integers[2], reinterpret_cast<std::uintptr_t>(&value));
}

template <typename Slot, typename T>
void expectSetterReaches() {
  const T value = sample<T>(2);
  expectReaches<Slot>([&] { return REALSetPropValue(kObject, kName, value); });
  const Expected expected = expectedOf(value);
  const std::uint64_t found =
      expected.floating ? std::bit_cast<std::uint64_t>(gRecorded.floats[0]) : gRecorded.integers[2];
  EXPECT_EQ(found & expected.mask, expected.bits);
}

TEST(GetPropValue, PicksTheMemberByTheTypeOfTheValue) {
  namespace slots = host::slots;
  expectGetterReaches<slots::REALGetPropValueInt16, short>();
  expectGetterReaches<slots::REALGetPropValueUInt16, unsigned short>();
  expectGetterReaches<slots::REALGetPropValueDouble, double>();
  expectGetterReaches<slots::REALGetPropValueSingle, float>();
  expectGetterReaches<slots::REALGetPropValueString, REALstringStruct*>();
  expectGetterReaches<slots::REALGetPropValueObject, REALobjectStruct*>();
  expectGetterReaches<slots::REALGetPropValueCFStringRef, CFStringRef>();
}

TEST(SetPropValue, PicksTheMemberByTheTypeOfTheValue) {
  namespace slots = host::slots;
  expectSetterReaches<slots::REALSetPropValueString, REALstringStruct*>();
  expectSetterReaches<slots::REALSetPropValueDouble, double>();
  expectSetterReaches<slots::REALSetPropValueUInt16, unsigned short>();
  expectSetterReaches<slots::REALSetPropValueInt16, short>();
  expectSetterReaches<slots::REALSetPropValueSingle, float>();
  expectSetterReaches<slots::REALSetPropValueCString, const char*>();
  expectSetterReaches<slots::REALSetPropValueWString, const wchar_t*>();
  expectSetterReaches<slots::REALSetPropValueCFStringRef, CFStringRef>();
}

TEST(SetPropValue, OfAnObjectReachesThePtrSetter) {
  static_assert(std::string_view(host::slots::REALSetPropValuePtr::kEntry) == "REALSetPropValuePtr");
  expectSetterReaches<host::slots::REALSetPropValuePtr, REALobjectStruct*>();
}

}  // namespace
