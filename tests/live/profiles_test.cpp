// Profiles from one end to the other: the plugin in the substitute host, a real X server, a real colord. Every call is
// a process of its own, as it would be for someone who types it.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/private_colord.h"
#include "support/process.h"
#include "support/xorg_server.h"

namespace {

using support::EdidBytes;
using support::PrivateColord;

constexpr const char* kAdobe = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
constexpr const char* kApple = "/usr/share/color/icc/colord/AppleRGB.icc";

class LiveProfiles : public testing::Test {
 protected:
  LiveProfiles() {
    server_.place({{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 0}}});
    server_.setEdid("DUMMY0", support::makeEdid({.vendor = "DEL", .serial = 1502, .name = "DELL U2412M"}));
    server_.setEdid("DUMMY1", support::makeEdid({.vendor = "HWP", .serial = 2701, .name = "HP Z27x"}));
  }

  /// What the tool prints for one call of a method, without the last line feed.
  std::string call(const std::string& method, const std::string& output, const std::string& file = {}) {
    std::vector<std::string> command{OSTREVIN_HOST, "call", method, std::to_string(server_.output(output).id)};
    if (!file.empty()) {
      command.push_back(file);
    }
    std::string text = support::run(command, server_.environment()).output;
    return text.substr(0, text.find_last_not_of('\n') + 1);
  }
  void expectProfile(const std::string& output, const std::string& file) {
    EXPECT_EQ(call("GetProfilePath", output), "path: " + file);
    const std::string device = colord_.colormgr({"find-device-by-property", "XRANDR_name", output});
    EXPECT_EQ(colord_.defaultProfileFile(PrivateColord::fields(device, "Device ID").at(0)), file);
  }

  PrivateColord colord_;
  support::XorgServer server_;
};

TEST_F(LiveProfiles, TheProfileOfADisplayIsTheOneThatColormgrReports) {
  colord_.registerDevice("xrandr-Dell", {{"XRANDR_name", "DUMMY0"}});
  for (const char* const file : {kAdobe, kApple}) {
    const std::string profile = colord_.colormgr({"find-profile-by-filename", file});
    const std::string id = PrivateColord::fields(profile, "Profile ID").at(0);
    colord_.colormgr({"device-add-profile", "xrandr-Dell", id});
    colord_.colormgr({"device-make-profile-default", "xrandr-Dell", id});
    expectProfile("DUMMY0", file);
  }
}

TEST_F(LiveProfiles, AFileThatIsSetIsTheDefaultThatColormgrReportsAndStaysItWhenColordRestarts) {
  const auto file = colord_.copyOfProfile("BestRGB.icc", "Mein Büro.icc");
  EXPECT_EQ(call("SetProfile", "DUMMY0", file), "result: True");
  EXPECT_EQ(call("SetProfile", "DUMMY1", kApple), "result: True");
  expectProfile("DUMMY0", file);
  expectProfile("DUMMY1", kApple);
  colord_.restart();
  expectProfile("DUMMY0", file);
  expectProfile("DUMMY1", kApple);
}

TEST_F(LiveProfiles, MonitorsWithOneEdidGetAndKeepProfilesOfTheirOwn) {
  const EdidBytes same = support::makeEdid({.vendor = "DEL", .serial = 0, .name = "Twin 24"});
  server_.setEdid("DUMMY0", same);
  server_.setEdid("DUMMY1", same);
  EXPECT_EQ(call("SetProfile", "DUMMY0", kAdobe), "result: True");
  EXPECT_EQ(call("SetProfile", "DUMMY1", kApple), "result: True");
  expectProfile("DUMMY0", kAdobe);
  expectProfile("DUMMY1", kApple);
  colord_.restart();
  expectProfile("DUMMY0", kAdobe);
  expectProfile("DUMMY1", kApple);
}

TEST_F(LiveProfiles, WhatIsNoDisplayProfileIsRefused) {
  EXPECT_EQ(call("SetProfile", "DUMMY0", "/usr/share/color/icc/colord/Crayons.icc"), "result: False");
  EXPECT_EQ(call("SetProfile", "DUMMY0", "/nowhere.icc"), "result: False");
}

}  // namespace
