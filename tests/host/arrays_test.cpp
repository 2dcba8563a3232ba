// Arrays, beyond what members.txt says of them one by one.
#include "host/arrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;

REALarrayStruct* const kArray = sample<REALarrayStruct*>(1);
REALstringStruct* const kString = sample<REALstringStruct*>(2);

void* gProcedure = nullptr;

void* dispatch(REALarrayStruct* /*array*/) { return gProcedure; }

/// A host whose arrays have one procedure for everything: the recording one.
class ArrayCalls : public ::testing::Test {
 protected:
  ArrayCalls() { gProcedure = reinterpret_cast<void*>(&recordCall); }

  template <typename Slot>
  void offer() {
    Slot::address = nullptr;
    host_.offer(Slot::kEntry, &dispatch);
    host_.forgetAsked();
    gRecorded = {};
  }

  RecordingHost host_;
};

std::uint64_t bitsOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }

TEST_F(ArrayCalls, CreateHandsAnEmptyArrayOfStringsOver) {
  host::slots::REALCreateArray::address = nullptr;
  host_.offer("RuntimeArrayCreateSingleDimBoundedArray", &recordCall);
  gAnswer = 0x1234;
  EXPECT_EQ(REALCreateArray(kHostArrayOfStrings, -1), reinterpret_cast<REALarrayStruct*>(0x1234));
  EXPECT_EQ(gRecorded.integers[0] & 0xFFFFFFFF, 3U);
  EXPECT_EQ(gRecorded.integers[1], ~0ULL);
}

TEST_F(ArrayCalls, SetPassesTheValueBeforeTheIndex) {
  offer<host::slots::REALSetArrayValueString>();
  REALSetArrayValueString(kArray, 5, kString);
  EXPECT_THAT(host_.asked(), ElementsAre("PluginStringArraySetProc"));
  EXPECT_EQ(gRecorded.integers[0], bitsOf(kArray));
  EXPECT_EQ(gRecorded.integers[1], bitsOf(kString));
  EXPECT_EQ(gRecorded.integers[2], 5U);
}

TEST_F(ArrayCalls, InsertPassesTheIndexBeforeTheValue) {
  offer<host::slots::REALInsertArrayValueString>();
  REALInsertArrayValueString(kArray, 5, kString);
  EXPECT_THAT(host_.asked(), ElementsAre("PluginStringArrayInsertProc"));
  EXPECT_EQ(gRecorded.integers[0], bitsOf(kArray));
  EXPECT_EQ(gRecorded.integers[1], 5U);
  EXPECT_EQ(gRecorded.integers[2], bitsOf(kString));
}

TEST_F(ArrayCalls, AnArrayWithoutAProcedureIsLeftAlone) {
  offer<host::slots::REALGetArrayValueDouble>();
  gProcedure = nullptr;
  double value = 4.5;
  REALGetArrayValueDouble(kArray, 0, &value);
  EXPECT_EQ(value, 4.5);
  offer<host::slots::REALInsertArrayValueString>();
  REALInsertArrayValueString(kArray, 0, kString);
  offer<host::slots::REALSetArrayValueBoolean>();
  REALSetArrayValueBoolean(kArray, 0, true);
  EXPECT_EQ(gRecorded.count, 0);
}

TEST_F(ArrayCalls, TheArrayIsNotLookedIntoAndMayBeNull) {
  offer<host::slots::REALInsertArrayValueString>();
  REALInsertArrayValueString(nullptr, -1, nullptr);
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], 0U);
  EXPECT_EQ(gRecorded.integers[1], ~0ULL);
  EXPECT_EQ(gRecorded.integers[2], 0U);
}

TEST_F(ArrayCalls, ABooleanElementIsTrueWhenTheLowByteIsNotZero) {
  offer<host::slots::REALGetArrayValueBoolean>();
  const auto get = [] {
    std::uint8_t found = 0xAA;
    REALGetArrayValueBoolean(kArray, 0, reinterpret_cast<bool*>(&found));
    return static_cast<int>(found);
  };
  gAnswer = 0x100;
  EXPECT_EQ(get(), 0);
  gAnswer = 0x1'0000'0000;
  EXPECT_EQ(get(), 0);
  gAnswer = 0x02;
  EXPECT_EQ(get(), 1);
  gAnswer = ~0ULL;
  EXPECT_EQ(get(), 1);
}

TEST_F(ArrayCalls, ABooleanReachesTheProcedureAsZeroOrOne) {
  for (const bool value : {true, false}) {
    offer<host::slots::REALInsertArrayValueBoolean>();
    REALInsertArrayValueBoolean(kArray, 0, value);
    EXPECT_EQ(gRecorded.integers[2] & 0xFFFFFFFF, value ? 1U : 0U);
    offer<host::slots::REALSetArrayValueBoolean>();
    REALSetArrayValueBoolean(kArray, 0, value);
    EXPECT_EQ(gRecorded.integers[1] & 0xFFFFFFFF, value ? 1U : 0U);
  }
}

// --- Overloads

TEST_F(ArrayCalls, InsertPicksTheMemberByTheTypeOfTheValue) {
  namespace slots = host::slots;
  const auto expectReaches = [&]<typename Slot, typename T>(Slot*, T value) {
    offer<Slot>();
    REALInsertArrayValue(kArray, 5, value);
    EXPECT_THAT(host_.asked(), ElementsAre(Slot::kEntry));
    EXPECT_EQ(gRecorded.integers[0], bitsOf(kArray));
    EXPECT_EQ(gRecorded.integers[1], 5U);
    const Expected expected = expectedOf(value);
    const std::uint64_t found =
        expected.floating ? std::bit_cast<std::uint64_t>(gRecorded.floats[0]) : gRecorded.integers[2];
    EXPECT_EQ(found & expected.mask, expected.bits);
  };
  expectReaches(static_cast<slots::REALInsertArrayValueInt16*>(nullptr), sample<short>(3));
  expectReaches(static_cast<slots::REALInsertArrayValueUInt16*>(nullptr), sample<unsigned short>(3));
  expectReaches(static_cast<slots::REALInsertArrayValueDouble*>(nullptr), sample<double>(3));
  expectReaches(static_cast<slots::REALInsertArrayValueSingle*>(nullptr), sample<float>(3));
  expectReaches(static_cast<slots::REALInsertArrayValueString*>(nullptr), sample<REALstringStruct*>(3));
  expectReaches(static_cast<slots::REALInsertArrayValueObject*>(nullptr), sample<REALobjectStruct*>(3));
}

TEST_F(ArrayCalls, SetPicksTheMemberByTheTypeOfTheValue) {
  namespace slots = host::slots;
  const auto expectReaches = [&]<typename Slot, typename T>(Slot*, T value) {
    offer<Slot>();
    REALSetArrayValue(kArray, 5, value);
    EXPECT_THAT(host_.asked(), ElementsAre(Slot::kEntry));
    EXPECT_EQ(gRecorded.integers[0], bitsOf(kArray));
    const Expected expected = expectedOf(value);
    EXPECT_EQ(gRecorded.integers[expected.floating ? 1 : 2], 5U);
    const std::uint64_t found =
        expected.floating ? std::bit_cast<std::uint64_t>(gRecorded.floats[0]) : gRecorded.integers[1];
    EXPECT_EQ(found & expected.mask, expected.bits);
  };
  expectReaches(static_cast<slots::REALSetArrayValueInt16*>(nullptr), sample<short>(3));
  expectReaches(static_cast<slots::REALSetArrayValueUInt16*>(nullptr), sample<unsigned short>(3));
  expectReaches(static_cast<slots::REALSetArrayValueDouble*>(nullptr), sample<double>(3));
  expectReaches(static_cast<slots::REALSetArrayValueSingle*>(nullptr), sample<float>(3));
  expectReaches(static_cast<slots::REALSetArrayValueString*>(nullptr), sample<REALstringStruct*>(3));
  expectReaches(static_cast<slots::REALSetArrayValueObject*>(nullptr), sample<REALobjectStruct*>(3));
  expectReaches(static_cast<slots::REALSetArrayValueText*>(nullptr), sample<const RuntimeText*>(3));
}

TEST_F(ArrayCalls, GetPicksTheMemberByTheTypeOfTheValue) {
  namespace slots = host::slots;
  const auto expectReaches = [&]<typename Slot, typename T>(Slot*, T value) {
    offer<Slot>();
    REALGetArrayValue(kArray, 5, &value);
    EXPECT_THAT(host_.asked(), ElementsAre(Slot::kEntry));
    EXPECT_EQ(gRecorded.integers[0], bitsOf(kArray));
    EXPECT_EQ(gRecorded.integers[1], 5U);
    if constexpr (!std::is_floating_point_v<T>) {
      EXPECT_EQ(value, T{}) << "the procedure answered 0";
    }
  };
  expectReaches(static_cast<slots::REALGetArrayValueInt16*>(nullptr), sample<short>(3));
  expectReaches(static_cast<slots::REALGetArrayValueUInt16*>(nullptr), sample<unsigned short>(3));
  expectReaches(static_cast<slots::REALGetArrayValueString*>(nullptr), sample<REALstringStruct*>(3));
  expectReaches(static_cast<slots::REALGetArrayValueText*>(nullptr), sample<const RuntimeText*>(3));
  expectReaches(static_cast<slots::REALGetArrayValueObject*>(nullptr), sample<REALobjectStruct*>(3));
  expectReaches(static_cast<slots::REALGetArrayValueDouble*>(nullptr), sample<double>(3));
  expectReaches(static_cast<slots::REALGetArrayValueSingle*>(nullptr), sample<float>(3));
}

}  // namespace
