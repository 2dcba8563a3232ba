// Walks over the devices of a real colord; colormgr is the oracle.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "platform/desktop/colord/displays.h"
#include "support/private_colord.h"

namespace colord_test {
namespace {

using support::PrivateColord;
using testing::ElementsAre;
using testing::IsEmpty;

std::string profileId(const PrivateColord& colord, const std::string& file) {
  return PrivateColord::fields(colord.colormgr({"find-profile-by-filename", file}), "Profile ID").at(0);
}

void addProfile(const PrivateColord& colord, const std::string& device, const std::string& file) {
  colord.colormgr({"device-add-profile", device, profileId(colord, file)});
}

void makeDefault(const PrivateColord& colord, const std::string& device, const std::string& file) {
  colord.colormgr({"device-make-profile-default", device, profileId(colord, file)});
}

TEST(ColordWalk, ListsEveryProfileAndTheFirstAsDefaultAndCurrent) {
  PrivateColord colord;
  colord.registerDevice("xrandr-first", {{"XRANDR_name", "DP-1"}, {"Model", "U2412M"}});
  addProfile(colord, "xrandr-first", kAdobe);
  addProfile(colord, "xrandr-first", kApple);
  makeDefault(colord, "xrandr-first", kAdobe);

  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const auto entries = walk(devicesFor({display}));
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].profile_path, colord.defaultProfileFile("xrandr-first"));
  EXPECT_EQ(entries[0].is_default, true);
  EXPECT_EQ(entries[0].is_current, true);
  EXPECT_EQ(entries[1].profile_path, kApple);
  EXPECT_EQ(entries[1].is_default, false);
  EXPECT_EQ(entries[1].is_current, false);
  for (const DeviceProfile& entry : entries) {
    EXPECT_EQ(entry.device_class, "mntr");
    EXPECT_EQ(entry.device_id, display.uuid);
    EXPECT_EQ(entry.description, "U2412M");
  }
}

TEST(ColordWalk, FollowsTheOrderOfTheDisplays) {
  PrivateColord colord;
  colord.registerDevice("second", {{"XRANDR_name", "DP-2"}});
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  addProfile(colord, "first", kAdobe);
  addProfile(colord, "second", kApple);
  const auto entries = walk(devicesFor({makeDisplay(1, "DP-1", {}), makeDisplay(2, "DP-2", {})}));
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].profile_path, kAdobe);
  EXPECT_EQ(entries[1].profile_path, kApple);
}

TEST(ColordWalk, IsEmptyWithoutADeviceOrItsProfiles) {
  PrivateColord colord;
  const ColordDevices devices = devicesFor({makeDisplay(1, "DP-1", {})});
  EXPECT_THAT(walk(devices), IsEmpty());
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  EXPECT_THAT(walk(devices), IsEmpty());
}

TEST(ColordWalk, SkipsPrinters) {
  PrivateColord colord;
  colord.registerDevice("printer", {{"XRANDR_name", "DP-1"}}, "printer");
  addProfile(colord, "printer", kAdobe);
  EXPECT_THAT(walk(devicesFor({makeDisplay(1, "DP-1", {})})), IsEmpty());
}

TEST(ColordWalk, GivesNoPathForAProfileWithoutAFile) {
  PrivateColord colord;
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  colord.colormgr({"create-profile", "no-file", "normal"});
  colord.colormgr({"device-add-profile", "first", "no-file"});
  const auto entries = walk(devicesFor({makeDisplay(1, "DP-1", {})}));
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].profile_path, std::nullopt);
}

TEST(ColordWalk, DescribesADeviceWithoutModelByVendorThenConnector) {
  PrivateColord colord;
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}, {"Vendor", "Acme"}});
  colord.registerDevice("second", {{"XRANDR_name", "DP-2"}});
  addProfile(colord, "first", kAdobe);
  addProfile(colord, "second", kAdobe);
  const auto entries = walk(devicesFor({makeDisplay(1, "DP-1", {}), makeDisplay(2, "DP-2", {})}));
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].description, "Acme");
  EXPECT_EQ(entries[1].description, "DP-2");
}

TEST(ColordWalk, EndsWhenTheVisitorReturnsFalse) {
  PrivateColord colord;
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  addProfile(colord, "first", kAdobe);
  addProfile(colord, "first", kApple);
  int visits = 0;
  devicesFor({makeDisplay(1, "DP-1", {})}).visit([&](const DeviceProfile&) { return ++visits < 1; });
  EXPECT_EQ(visits, 1);
}

TEST(ColordWalk, VisitsOnTheCallingThread) {
  PrivateColord colord;
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  addProfile(colord, "first", kAdobe);
  std::thread::id visited_on;
  devicesFor({makeDisplay(1, "DP-1", {})}).visit([&](const DeviceProfile&) {
    visited_on = std::this_thread::get_id();
    return true;
  });
  EXPECT_EQ(visited_on, std::this_thread::get_id());
}

TEST(ColordWalk, ShowsChangesByOthersAtOnce) {
  PrivateColord colord;
  const std::string path = colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  addProfile(colord, "first", kAdobe);
  addProfile(colord, "first", kApple);
  const Display display = makeDisplay(1, "DP-1", {});
  const ColordDevices devices = devicesFor({display});
  for (int round = 0; round < 10; ++round) {
    const char* const file = round % 2 == 0 ? kAdobe : kApple;
    makeDefault(colord, "first", file);
    ASSERT_EQ(currentFile(devices, display), file) << "round " << round;
  }
  colord.colormgr({"device-set-model", "first", "Renamed"});
  EXPECT_EQ(walk(devices).at(0).description, "Renamed");
  colord.deleteDevice(path);
  EXPECT_THAT(walk(devices), IsEmpty());
  colord.registerDevice("first", {{"XRANDR_name", "DP-2"}});
  EXPECT_THAT(walk(devices), IsEmpty());
}

TEST(ColordWalk, AllowsSeveralThreads) {
  PrivateColord colord;
  colord.registerDevice("first", {{"XRANDR_name", "DP-1"}});
  addProfile(colord, "first", kAdobe);
  const Display display = makeDisplay(1, "DP-1", {});
  const ColordDevices devices = devicesFor({display});
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 5; ++round) {
        right += currentFile(devices, display) == kAdobe;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(right, 20);
}

}  // namespace
}  // namespace colord_test
