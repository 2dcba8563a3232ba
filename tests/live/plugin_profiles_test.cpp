// The built plugin's names and profiles, compared with edid-decode and colormgr.
#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "live/live_plugin.h"
#include "support/edid_maker.h"
#include "support/private_colord.h"

namespace live {
namespace {

using namespace std::chrono_literals;
using support::decodedName;
using support::EdidBytes;
using support::makeEdid;
using support::PrivateColord;
using support::XorgServer;

constexpr const char* kAdobe = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
constexpr const char* kApple = "/usr/share/color/icc/colord/AppleRGB.icc";

/// The plugin's time limit for a profile, and what a busy computer may need beyond it.
constexpr auto kProfileLimit = 2s;
constexpr auto kSlack = 2s;

bool comesTrue(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(20ms);
  }
  return true;
}

/// Three monitors on a server, the second and the third of one model with one serial number. Made after the system bus.
class Monitors {
 public:
  Monitors() {
    server.place({{"DUMMY0", {1280, 1024, 0, 0}}, {"DUMMY1", {800, 600, 1280, 0}}, {"DUMMY2", {800, 600, 2080, 0}}});
    server.setEdid("DUMMY0", kFirst);
    server.setEdid("DUMMY1", kTwin);
    server.setEdid("DUMMY2", kTwin);
  }

  std::string name(const std::string& output) { return call("GetName", output)["name"].text(); }
  std::string profile(const std::string& output) { return call("GetProfilePath", output)["path"].text(); }
  bool setProfile(const std::string& output, const std::string& file) {
    return session.plugin.call("SetProfile", {number(output), file}).result.boolean();
  }
  std::uint32_t number(const std::string& output) { return server.output(output).id; }

  /// GetProfilePath finds nothing within its time limit.
  void expectNoProfile(const std::string& output) {
    const std::uint32_t display = number(output);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(session.plugin.call("GetProfilePath", {display, "before"})["path"].text(), "");
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, kProfileLimit);
    EXPECT_LE(took, kProfileLimit + kSlack);
  }

  /// The tool, a separate process, lists the displays with their names and without profiles.
  void expectToolLists() {
    const auto result = support::run(
        {OSTREVIN_HOST, "--plugin", OSTREVIN_LIBRARY, "--desktop", "live", "--json", "list"}, server.environment());
    ASSERT_EQ(result.exit_status, 0) << result.errors;
    const auto displays = nlohmann::json::parse(result.output).at("displays");
    const auto expected = expectedDisplays(server);
    ASSERT_EQ(displays.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(displays[i].at("number"), expected[i].number);
      EXPECT_EQ(displays[i].at("name"), decodedName(expected[i].output == "DUMMY0" ? kFirst : kTwin));
      EXPECT_EQ(displays[i].at("profile"), "");
    }
  }

  const EdidBytes kFirst = makeEdid({.vendor = "DEL", .product = 0xA0B1, .serial = 1502, .name = "DELL U2412M"});
  const EdidBytes kTwin = makeEdid({.vendor = "HWP", .product = 0x3301, .serial = 27001, .name = "HP Z27x  G2"});

  XorgServer server;
  LiveSession session{server.display()};

 private:
  devhost::CallResult call(const std::string& method, const std::string& output) {
    return session.plugin.call(method, {number(output)});
  }
};

class LiveProfiles : public testing::Test {
 protected:
  /// colord's identifier of the output's device.
  std::string device(const std::string& output) {
    return PrivateColord::fields(colord.colormgr({"find-device-by-property", "XRANDR_name", output}), "Device ID")
        .at(0);
  }
  std::string reported(const std::string& output) { return colord.defaultProfileFile(device(output)); }

  /// Both colormgr and the plugin report the file.
  void expectProfile(const std::string& output, const std::string& file) {
    EXPECT_EQ(reported(output), file);
    EXPECT_EQ(monitors.profile(output), reported(output));
  }

  std::string profileId(const std::string& file) {
    return PrivateColord::fields(colord.colormgr({"find-profile-by-filename", file}), "Profile ID").at(0);
  }

  PrivateColord colord;
  Monitors monitors;
};

TEST_F(LiveProfiles, GetNameReturnsTheNameThatEdidDecodePrints) {
  ASSERT_NE(decodedName(monitors.kFirst), "");
  EXPECT_EQ(monitors.name("DUMMY0"), decodedName(monitors.kFirst));
  EXPECT_EQ(monitors.name("DUMMY1"), decodedName(monitors.kTwin));
  EXPECT_EQ(monitors.name("DUMMY2"), decodedName(monitors.kTwin));
  const EdidBytes long_name = makeEdid({.serial = 3, .name = "Exactly13Char", .extensions = 2});
  monitors.server.setEdid("DUMMY1", long_name);
  EXPECT_EQ(monitors.name("DUMMY1"), decodedName(long_name));
}

TEST_F(LiveProfiles, GetProfilePathReturnsTheDefaultThatColormgrReports) {
  colord.registerDevice("xrandr-first", {{"XRANDR_name", "DUMMY0"}, {"Model", "U2412M"}});
  colord.colormgr({"device-add-profile", "xrandr-first", profileId(kApple)});
  colord.colormgr({"device-add-profile", "xrandr-first", profileId(kAdobe)});
  for (const char* const file : {kAdobe, kApple}) {
    colord.colormgr({"device-make-profile-default", "xrandr-first", profileId(file)});
    expectProfile("DUMMY0", file);
  }
}

TEST_F(LiveProfiles, SetProfileMakesTheFileTheDefault) {
  ASSERT_TRUE(monitors.setProfile("DUMMY0", kAdobe));
  expectProfile("DUMMY0", kAdobe);
  ASSERT_TRUE(monitors.setProfile("DUMMY0", kApple));
  expectProfile("DUMMY0", kApple);
}

TEST_F(LiveProfiles, SetProfileReplacesTheDefaultOfARegisteredDevice) {
  colord.registerDevice("xrandr-first", {{"XRANDR_name", "DUMMY0"}, {"Model", "U2412M"}});
  colord.colormgr({"device-add-profile", "xrandr-first", profileId(kApple)});
  expectProfile("DUMMY0", kApple);
  ASSERT_TRUE(monitors.setProfile("DUMMY0", kAdobe));
  EXPECT_EQ(device("DUMMY0"), "xrandr-first");
  expectProfile("DUMMY0", kAdobe);
}

TEST_F(LiveProfiles, SetProfileOfAFileAnywhereOutlastsARestartOfColord) {
  const std::string file = colord.copyOfProfile("AppleRGB.icc", "Größe 27″ #1?.icc");
  ASSERT_TRUE(monitors.setProfile("DUMMY0", file));
  expectProfile("DUMMY0", file);
  colord.restart();
  EXPECT_TRUE(comesTrue([&] { return reported("DUMMY0") == file; }));
  expectProfile("DUMMY0", file);
}

// Each call is a process of its own.
TEST_F(LiveProfiles, SetProfileOutlastsItsProcessAndARestartOfColord) {
  const auto call = [&](const std::string& method, const std::string& output,
                        const std::vector<std::string>& file = {}) {
    std::vector<std::string> command{OSTREVIN_HOST, "call", method, std::to_string(monitors.number(output))};
    command.insert(command.end(), file.begin(), file.end());
    return support::run(command, monitors.server.environment()).output;
  };
  ASSERT_EQ(call("SetProfile", "DUMMY1", {kAdobe}), "result: True\n");
  ASSERT_EQ(call("SetProfile", "DUMMY2", {kApple}), "result: True\n");
  for (const bool restart : {false, true}) {
    if (restart) {
      colord.restart();
    }
    EXPECT_EQ(call("GetProfilePath", "DUMMY1"), std::string("path: ") + kAdobe + "\n");
    EXPECT_EQ(call("GetProfilePath", "DUMMY2"), std::string("path: ") + kApple + "\n");
    EXPECT_EQ(reported("DUMMY1"), kAdobe);
    EXPECT_EQ(reported("DUMMY2"), kApple);
  }
}

TEST_F(LiveProfiles, SetProfileRefusesOtherFilesAndChangesNothing) {
  ASSERT_TRUE(monitors.setProfile("DUMMY0", kAdobe));
  EXPECT_FALSE(monitors.setProfile("DUMMY0", colord.directory() / "no such file.icc"));
  EXPECT_FALSE(monitors.setProfile("DUMMY0", OSTREVIN_LIBRARY));
  EXPECT_FALSE(monitors.setProfile("DUMMY0", "/usr/share/color/icc/colord/Crayons.icc"));  // a profile of named colours
  expectProfile("DUMMY0", kAdobe);
}

TEST_F(LiveProfiles, SetProfileKeepsIdenticalMonitorsApart) {
  ASSERT_TRUE(monitors.setProfile("DUMMY1", kAdobe));
  ASSERT_TRUE(monitors.setProfile("DUMMY2", kApple));
  expectProfile("DUMMY1", kAdobe);
  expectProfile("DUMMY2", kApple);
  monitors.server.makePrimary("DUMMY2");
  monitors.server.setMode("DUMMY1", 800, 600, 1280, 200);
  expectProfile("DUMMY1", kAdobe);
  expectProfile("DUMMY2", kApple);
  colord.restart();
  EXPECT_TRUE(comesTrue([&] { return reported("DUMMY1") == kAdobe && reported("DUMMY2") == kApple; }));
  expectProfile("DUMMY1", kAdobe);
  expectProfile("DUMMY2", kApple);
}

TEST_F(LiveProfiles, GetProfilePathFindsNoneWithoutADevice) {
  ASSERT_TRUE(monitors.setProfile("DUMMY1", kAdobe));
  monitors.expectNoProfile("DUMMY2");
}

TEST_F(LiveProfiles, GetProfilePathFindsNoneWithoutColord) {
  ASSERT_TRUE(monitors.setProfile("DUMMY0", kAdobe));
  colord.stop();
  monitors.expectNoProfile("DUMMY0");
  EXPECT_EQ(monitors.name("DUMMY0"), decodedName(monitors.kFirst));
  monitors.expectToolLists();
  colord.start();
  expectProfile("DUMMY0", kAdobe);
}

TEST_F(LiveProfiles, GetProfilePathFindsNoneWhileColordHangs) {
  ASSERT_TRUE(monitors.setProfile("DUMMY0", kAdobe));
  colord.suspend();
  monitors.expectNoProfile("DUMMY0");
  EXPECT_EQ(monitors.name("DUMMY0"), decodedName(monitors.kFirst));
  monitors.expectToolLists();
  colord.resume();
  EXPECT_TRUE(comesTrue([&] { return monitors.profile("DUMMY0") == kAdobe; }));
  expectProfile("DUMMY0", kAdobe);
}

TEST(LiveProfilesWithoutABus, GetProfilePathFindsNone) {
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  Monitors monitors;
  monitors.expectNoProfile("DUMMY0");
  EXPECT_FALSE(monitors.setProfile("DUMMY0", kAdobe));
  EXPECT_EQ(monitors.name("DUMMY0"), decodedName(monitors.kFirst));
  monitors.expectToolLists();
}

}  // namespace
}  // namespace live
