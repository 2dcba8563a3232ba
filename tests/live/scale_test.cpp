#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <memory>
#include <thread>

#include "desktop/model/desktop.h"
#include "live/agreement.h"
#include "support/temporary_folder.h"
#include "support/xorg_server.h"

namespace {

using live::expectAgreement;
using live::liveDesktopOf;
using support::ChildProcess;
using support::XorgServer;

class LiveScale : public testing::Test {
 protected:
  LiveScale() { server.place({{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 50}}}); }

  /// Starts a real settings manager with these settings, which replaces a running one.
  void startSettingsManager(const std::string& settings) {
    writeSettings(settings);
    manager = std::make_unique<ChildProcess>(std::vector<std::string>{"xsettingsd", "-c", directory.path("settings")},
                                             server.environment(), directory.path("log"));
  }

  void writeSettings(const std::string& settings) { directory.write("settings", settings); }

  /// Calls until the scale is this one, since the manager works at its own pace.
  bool becomes(double scale) {
    constexpr std::chrono::seconds kLimit(20);
    const auto deadline = std::chrono::steady_clock::now() + kLimit;
    while (std::chrono::steady_clock::now() < deadline) {
      if (desktop->arrangement()->screens.at(0).backing_scale == scale) {
        return true;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
  }

  XorgServer server;
  support::TemporaryFolder directory;
  std::shared_ptr<platform::desktop::Desktop> desktop = liveDesktopOf(server);
  std::unique_ptr<ChildProcess> manager;
};

TEST_F(LiveScale, IsOneWithoutASetting) { expectAgreement(server, *desktop->arrangement(), 1); }

TEST_F(LiveScale, ComesFromTheResourcesAndFollowsThem) {
  server.setResources("Xft.dpi: 192\n");
  expectAgreement(server, *desktop->arrangement(), 2);
  server.setResources("Xft.antialias: 1\nXft.dpi:\t144\n");
  expectAgreement(server, *desktop->arrangement(), 1.5);
  server.setResources("Xft.dpi: 72\n");
  expectAgreement(server, *desktop->arrangement(), 1);
  server.setResources("Xft.dpi: 288\n");
  expectAgreement(server, *desktop->arrangement(), 3);
  server.setResources("");
  expectAgreement(server, *desktop->arrangement(), 1);
}

TEST_F(LiveScale, PrefersASettingsManagerToTheResources) {
  server.setResources("Xft.dpi: 144\n");
  startSettingsManager("Net/ThemeName \"Any\"\nGdk/WindowScalingFactor 2\nXft/DPI 98304\n");
  ASSERT_TRUE(becomes(2));
  expectAgreement(server, *desktop->arrangement(), 2);
}

TEST_F(LiveScale, FollowsTheSettingsManagerThroughItsLife) {
  server.setResources("Xft.dpi: 144\n");
  ASSERT_TRUE(becomes(1.5));
  startSettingsManager("Gdk/WindowScalingFactor 2\n");
  ASSERT_TRUE(becomes(2));
  writeSettings("Gdk/WindowScalingFactor 3\n");
  manager->signal(SIGHUP);
  ASSERT_TRUE(becomes(3));
  manager->stop();
  ASSERT_TRUE(becomes(1.5));
  startSettingsManager("Net/ThemeName \"Any\"\n");
  startSettingsManager("Gdk/WindowScalingFactor 4\n");
  ASSERT_TRUE(becomes(4));
}

TEST_F(LiveScale, ComesFromTheResourcesWhenTheManagerHasNone) {
  startSettingsManager("Net/ThemeName \"Any\"\nGdk/WindowScalingFactor \"two\"\n");
  server.setResources("Xft.dpi: 192\n");
  ASSERT_TRUE(becomes(2));
  expectAgreement(server, *desktop->arrangement(), 2);
}

}  // namespace
