// Assignments that outlive colord and the process that made them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "platform/desktop/colord/displays.h"
#include "support/private_colord.h"
#include "support/process.h"

namespace colord_test {
namespace {

using support::PrivateColord;
using support::runSuccessfully;

std::string registeredId(const PrivateColord& colord, const std::string& connector) {
  return PrivateColord::fields(colord.colormgr({"find-device-by-property", "XRANDR_name", connector}), "Device ID")
      .at(0);
}

bool comesTrue(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

TEST(ColordRestart, KeepsAnAssignmentOfColordsOwnFile) {
  PrivateColord colord;
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const ColordDevices devices = devicesFor({display});
  ASSERT_TRUE(devices.assign(*display.uuid, kAdobe));
  const std::string id = registeredId(colord, "DP-1");
  colord.restart();
  EXPECT_EQ(colord.defaultProfileFile(id), kAdobe);
  EXPECT_EQ(currentFile(devices, display), kAdobe);
}

TEST(ColordRestart, RestoresAFileElsewhereByTheSameProcess) {
  PrivateColord colord;
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const ColordDevices devices = devicesFor({display});
  const auto file = colord.copyOfProfile("AppleRGB.icc", "My display.icc");
  ASSERT_TRUE(devices.assign(*display.uuid, kAdobe));
  ASSERT_TRUE(devices.assign(*display.uuid, file));
  const std::string id = registeredId(colord, "DP-1");
  colord.restart();
  // Without a walk.
  EXPECT_TRUE(comesTrue([&] { return colord.defaultProfileFile(id) == file; }));
  EXPECT_EQ(currentFile(devices, display), file);
}

TEST(ColordRestart, RestoresAFileElsewhereByTheNextProcess) {
  PrivateColord colord;
  const auto file = colord.copyOfProfile("AppleRGB.icc", "My display.icc");
  ASSERT_EQ(runSuccessfully({COLORD_DEVICE_TOOL, "assign", "DP-1", file}), "true\n");
  const std::string id = registeredId(colord, "DP-1");
  EXPECT_EQ(colord.defaultProfileFile(id), file);
  colord.restart();
  EXPECT_EQ(runSuccessfully({COLORD_DEVICE_TOOL, "current", "DP-1"}), file.string() + "\n");
  EXPECT_EQ(colord.defaultProfileFile(id), file);
}

TEST(ColordRestart, RestoresTheProfileOfADeviceRegisteredByItsDaemon) {
  PrivateColord colord;
  colord.registerDevice("daemons", {{"XRANDR_name", "DP-1"}});
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const ColordDevices devices = devicesFor({display});
  const auto file = colord.copyOfProfile("AppleRGB.icc", "My display.icc");
  ASSERT_TRUE(devices.assign(*display.uuid, file));
  colord.restart();
  colord.registerDevice("daemons", {{"XRANDR_name", "DP-1"}});
  EXPECT_EQ(currentFile(devices, display), file);
  EXPECT_EQ(colord.defaultProfileFile("daemons"), file);
}

TEST(ColordRestart, KeepsALaterChoiceByAnotherProgram) {
  PrivateColord colord;
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const ColordDevices devices = devicesFor({display});
  const auto file = colord.copyOfProfile("AppleRGB.icc", "My display.icc");
  ASSERT_TRUE(devices.assign(*display.uuid, kAdobe));
  ASSERT_TRUE(devices.assign(*display.uuid, file));
  const std::string id = registeredId(colord, "DP-1");
  colord.colormgr({"device-make-profile-default", id,
                   PrivateColord::fields(colord.colormgr({"find-profile-by-filename", kAdobe}), "Profile ID").at(0)});
  colord.restart();
  EXPECT_EQ(currentFile(devices, display), kAdobe);
  EXPECT_EQ(colord.defaultProfileFile(id), kAdobe);
}

TEST(ColordRestart, ForgetsADeletedFile) {
  PrivateColord colord;
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  const ColordDevices devices = devicesFor({display});
  const auto file = colord.copyOfProfile("AppleRGB.icc", "My display.icc");
  ASSERT_TRUE(devices.assign(*display.uuid, kAdobe));
  ASSERT_TRUE(devices.assign(*display.uuid, file));
  std::filesystem::remove(file);
  colord.restart();
  EXPECT_EQ(currentFile(devices, display), kAdobe);
}

TEST(ColordRestart, SeparatesIdenticalMonitors) {
  PrivateColord colord;
  const Display left = makeDisplay(1, "DP-1", firstEdid());
  const Display right = makeDisplay(2, "DP-2", firstEdid());
  const auto file = colord.copyOfProfile("AppleRGB.icc", "left.icc");
  {
    const ColordDevices devices = devicesFor({left, right});
    ASSERT_TRUE(devices.assign(*left.uuid, file));
    ASSERT_TRUE(devices.assign(*right.uuid, kApple));
  }
  colord.restart();
  const ColordDevices devices = devicesFor({right, left});
  EXPECT_EQ(currentFile(devices, left), file);
  EXPECT_EQ(currentFile(devices, right), kApple);
}

}  // namespace
}  // namespace colord_test
