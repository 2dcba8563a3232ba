// Controls, files, pictures, registration and the runtime, beyond what members.txt says of them one by one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/host_calls.h"
#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;

TEST(ControlEnabled, IsTheHostsByteAsItIs) {
  RecordingHost host;
  host::slots::REALGetControlEnabled::address = nullptr;
  host.offer("REALGetControlEnabled", &recordCall);
  gAnswer = 0x1F02;
  EXPECT_EQ(REALGetControlEnabled(sample<REALobjectStruct*>(1)), 2);
}

TEST(ControlVisible, IsReducedToABoolean) {
  RecordingHost host;
  host::slots::REALGetControlVisible::address = nullptr;
  host.offer("GetControlVisible", &recordCall);
  gAnswer = 0x1F02;
  const bool visible = REALGetControlVisible(sample<REALobjectStruct*>(1));
  EXPECT_EQ(static_cast<int>(visible), 1);
}

TEST(RegisterBackgroundTask, IsMinusOneIn32BitsWhileTheHostLacksIt) {
  RecordingHost host;
  host::slots::REALRegisterBackgroundTask::address = nullptr;
  const auto task = REALRegisterBackgroundTask(1, nullptr);
  EXPECT_EQ(task, 0xFFFFFFFFU);
  EXPECT_EQ(sizeof(task), 4U);
  EXPECT_THAT(host.asked(), ElementsAre("PluginRegisterBackgroundTask"));
}

TEST(RegisterBackgroundTask, IsCutTo32Bits) {
  RecordingHost host;
  host::slots::REALRegisterBackgroundTask::address = nullptr;
  host.offer("PluginRegisterBackgroundTask", &recordCall);
  gAnswer = 0x1'0000'0007;
  EXPECT_EQ(REALRegisterBackgroundTask(1, nullptr), 7U);
}

double hostVersion() { return 2024.042; }

TEST(GetRBVersion, IsADouble) {
  RecordingHost host;
  host::slots::REALGetRBVersion::address = nullptr;
  EXPECT_EQ(REALGetRBVersion(), 0.0);
  host.offer("REALGetRBVersion", &hostVersion);
  EXPECT_EQ(REALGetRBVersion(), 2024.042);
  EXPECT_EQ(REALGetRBVersion(), 2024.042);
  EXPECT_THAT(host.asked(), ElementsAre("REALGetRBVersion", "REALGetRBVersion"));
}

TEST(LockPictureDescription, OfAPictureIntoADescriptionReachesTheEntryForNativeTypes) {
  RecordingHost host;
  host::slots::REALLockPictureDescription::address = nullptr;
  host::slots::REALLockPictureDescriptionWithNativeType::address = nullptr;
  host.offer("lockPictureDescription", &recordCall);
  gAnswer = 0x100;
  auto* const picture = sample<REALobjectStruct*>(1);
  auto* const description = sample<REALpictureDescription*>(2);
  EXPECT_EQ(REALLockPictureDescription(picture, description), 0x100);
  EXPECT_EQ(gRecorded.integers[0], reinterpret_cast<std::uintptr_t>(picture));
  EXPECT_EQ(gRecorded.integers[1], reinterpret_cast<std::uintptr_t>(description));
  REALLockPictureDescription(picture, nullptr);
  EXPECT_EQ(gRecorded.integers[1], 0U);
  REALLockPictureDescription(picture, NULL);
  REALLockPictureDescription(0, 0);
  EXPECT_THAT(host.asked(), ElementsAre("lockPictureDescription"));
}

TEST(LockPictureDescription, WithAnyOtherArgumentsReachesItsOwnEntryAndIsABoolean) {
  RecordingHost host;
  host::slots::REALLockPictureDescription::address = nullptr;
  host.offer("REALLockPictureDescription", &recordCall);
  gAnswer = 0x100;
  const bool locked = REALLockPictureDescription(sample<REALobjectStruct*>(1), sample<REALpictureDescription*>(2), 3);
  EXPECT_FALSE(locked);
  EXPECT_THAT(host.asked(), ElementsAre("REALLockPictureDescription"));
}

TEST(FolderItemFromParentFSRef, TakesReferencesAsItTakesPointers) {
  RecordingHost host;
  host::slots::REALFolderItemFromParentFSRef::address = nullptr;
  host.offer("REALFolderItemFromParentFSRef", &recordCall);
  gAnswer = 0x1234;
  auto* const parent = sample<const FSRef*>(1);
  auto* const name = sample<const HFSUniStr255*>(2);
  EXPECT_EQ(REALFolderItemFromParentFSRef(*parent, *name), 0x1234);
  EXPECT_EQ(gRecorded.integers[0], reinterpret_cast<std::uintptr_t>(parent));
  EXPECT_EQ(gRecorded.integers[1], reinterpret_cast<std::uintptr_t>(name));
  REALFolderItemFromParentFSRef(parent, name);
  EXPECT_THAT(host.asked(), ElementsAre("REALFolderItemFromParentFSRef"));
}

TEST(AMemberWithoutAFixedList, KeepsOneSlotForAllTheListsThatItIsCalledWith) {
  RecordingHost host;
  host::slots::REALMessageBox::address = nullptr;
  host.offer("RuntimeMsgBox", &recordCall);
  REALMessageBox();
  REALMessageBox(1);
  REALMessageBox("text", 2.5, std::uint16_t{3});
  EXPECT_EQ(gRecorded.count, 3);
  EXPECT_THAT(host.asked(), ElementsAre("RuntimeMsgBox"));
}

TEST(AMemberWithoutAFixedList, PassesPlainStructuresByValue) {
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
  host::slots::REALSetControlPosition::address = nullptr;
  host.offer("ctlPosSetter", entry);
  const Point point = {11, 22};
  EXPECT_EQ(REALSetControlPosition(point, 3), 1);
  EXPECT_EQ(received.x, 11);
  EXPECT_EQ(received.y, 25);
}

TEST(AMemberWithoutAFixedList, PassesMoreArgumentsThanThereAreRegisters) {
  static std::int64_t received = 0;
  const auto entry = +[](std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d, std::int64_t e, std::int64_t f,
                         std::int64_t g, std::int64_t h, std::int64_t i, std::int64_t j) {
    received = a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f + 7 * g + 8 * h + 9 * i + 10 * j;
  };
  RecordingHost host;
  host::slots::REALDrawPicturePrimitive::address = nullptr;
  host.offer("drawPicturePrimitive", entry);
  REALDrawPicturePrimitive(1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL, 9LL, 10LL);
  EXPECT_EQ(received, 385);
}

}  // namespace
