// The methods of the built plugin under sway and weston, compared with swaymsg and wayland-info; and while the
// compositor is killed.
#include <gmock/gmock.h>
#include <malloc.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "desktop/wayland/wayland_displays.h"
#include "live/live_plugin.h"
#include "support/edid_maker.h"
#include "support/environment_variables.h"
#include "support/private_colord.h"
#include "support/temporary_folder.h"
#include "support/wayland_session.h"

namespace live {
namespace {

using platform::desktop::waylandRoundTrips;
using support::SwaySession;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint64_t kNotFound = 4099018739;
constexpr std::chrono::seconds kLimit(20);

class WaylandGeometry : public testing::Test {
 protected:
  /// Three outputs side by side, beside the one that is a window: scale 1, scale 1.5, and scale 2 on its side.
  void placeThree() const {
    sway.swaymsg({"output", "HEADLESS-1", "mode", "1920x1080", "position", "0", "0", "scale", "1"});
    sway.swaymsg({"output", "HEADLESS-2", "mode", "2560x1440", "position", "1920", "100", "scale", "1.5"});
    sway.swaymsg(
        {"output", "HEADLESS-3", "mode", "3840x2160", "position", "-1080", "-300", "scale", "2", "transform", "90"});
  }

  void waitForOutputs(std::size_t count) const {
    const auto deadline = std::chrono::steady_clock::now() + kLimit;
    while (sway.outputs().size() != count && std::chrono::steady_clock::now() < deadline) {
    }
  }

  /// Compares with swaymsg, once the compositor's events have arrived.
  void expectAgreement(std::size_t count) const {
    const auto displays = expectedDisplays(sway);
    ASSERT_EQ(displays.size(), count);
    waitForAgreement(displays);
    expectGeometry(plugin, displays);
  }

  bool waitForAgreement(const std::vector<ExpectedDisplay>& displays) const {
    const auto deadline = std::chrono::steady_clock::now() + kLimit;
    while (!agrees(displays)) {
      if (std::chrono::steady_clock::now() > deadline) {
        return false;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
  }

  bool agrees(const std::vector<ExpectedDisplay>& displays) const {
    bool same = activeDisplays().size() == displays.size();
    for (const ExpectedDisplay& display : displays) {
      const auto rect = plugin.call("GetCGRect", {display.number});
      same = same && rect["x"].real() == display.x && rect["y"].real() == display.y &&
             rect["width"].real() == display.width && rect["height"].real() == display.height &&
             plugin.call("GetScale", {display.number}).result.real() == display.scale;
    }
    return same;
  }

  const SwaySession outer;
  SwaySession sway{3, outer};
  LiveSession session{"", sway.socket()};
  const devhost::Plugin& plugin = session.plugin;
};

TEST_F(WaylandGeometry, AgreesWithSwayOnThreeScalesAndARotation) {
  placeThree();
  expectAgreement(4);
}

TEST_F(WaylandGeometry, FollowsOutputsThatMoveGoAndCome) {
  placeThree();
  expectAgreement(4);
  const std::uint32_t kept = sway.numbers().at("HEADLESS-2");
  sway.swaymsg({"output", "HEADLESS-2", "position", "1920", "-400"});
  expectAgreement(4);
  const std::uint32_t removed = sway.numbers().at("WL-1");
  outer.closeWindows();
  waitForOutputs(3);
  expectAgreement(3);
  EXPECT_EQ(plugin.call("GetIndex", {removed}).result.unsignedNumber(), kNotFound);
  sway.createOutput();
  sway.swaymsg({"output", "HEADLESS-4", "mode", "1280x720", "position", "0", "1080", "scale", "1.25"});
  expectAgreement(4);
  EXPECT_EQ(sway.numbers().at("HEADLESS-2"), kept);
}

TEST_F(WaylandGeometry, ReturnsEveryFractionalScaleExactly) {
  placeThree();
  for (const char* const mode : {"1920x1080", "1366x768", "2560x1600", "3840x2160"}) {
    for (const char* const scale : {"1", "1.25", "1.5", "1.75", "2", "2.25", "3"}) {
      SCOPED_TRACE(std::string(mode) + " at " + scale);
      sway.swaymsg({"output", "HEADLESS-1", "mode", mode, "scale", scale});
      const std::uint32_t number = sway.numbers().at("HEADLESS-1");
      const auto deadline = std::chrono::steady_clock::now() + kLimit;
      const auto read = [&] { return plugin.call("GetScale", {number}).result.real(); };
      while (read() != std::stod(scale) && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
      }
      ASSERT_EQ(read(), std::stod(scale));
    }
  }
}

TEST_F(WaylandGeometry, NeedsNoRoundTripWhileNothingChanges) {
  placeThree();
  expectAgreement(4);
  const auto displays = expectedDisplays(sway);
  const auto before = waylandRoundTrips();
  EXPECT_GT(before, 0U);
  for (int i = 0; i < 100; ++i) {
    for (const ExpectedDisplay& display : displays) {
      plugin.call("GetIndex", {display.number});
      plugin.call("GetScale", {display.number});
      plugin.call("GetRect", {display.number});
      plugin.call("GetCGRect", {display.number});
      plugin.call("DisplayIDForWindow", {0, 0, 100, 100});
    }
  }
  EXPECT_EQ(waylandRoundTrips(), before);
  sway.swaymsg({"output", "HEADLESS-3", "mode", "1280x720"});
  expectAgreement(4);
  EXPECT_GT(waylandRoundTrips(), before);
}

TEST_F(WaylandGeometry, HasNoDisplaysAfterTheCompositorIsKilledUntilTheNextOne) {
  placeThree();
  expectAgreement(4);
  sway.kill();
  for (int i = 0; i < 20; ++i) {
    EXPECT_THAT(activeDisplays(), IsEmpty());
    EXPECT_EQ(plugin.call("GetScale", {1}).result.real(), 0.0);
  }
  sway.restart(2);
  expectAgreement(3);
}

std::size_t entriesOf(const char* folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

struct Usage {
  std::size_t threads = 0;
  std::size_t descriptors = 0;
  std::size_t bytes = 0;  ///< a sanitizer has an account of its own: the leak checker's
};

/// What the process has in use once the threads of readings have ended. The test has one thread.
Usage usage() {
  const char* const threads = "/proc/self/task";
  const auto deadline = std::chrono::steady_clock::now() + kLimit;
  while (entriesOf(threads) > 1 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return {entriesOf(threads), entriesOf("/proc/self/fd"), mallinfo2().uordblks};
}

TEST_F(WaylandGeometry, KeepsNothingOfCompositorsAndOutputsThatAreGone) {
  constexpr int kRounds = 8;
  constexpr std::size_t kLeastLeak = kRounds * 8192;  // half of what a connection's buffers have
  const auto round = [&](int steps) {
    for (int step = 0; step < steps; ++step) {
      for (const char* const x : {"3000", "4000", "5000"}) {
        sway.swaymsg({"output", "HEADLESS-2", "position", x, "0"});
        ASSERT_TRUE(waitForAgreement(expectedDisplays(sway)));
      }
      outer.closeWindows();
      waitForOutputs(3);
      ASSERT_TRUE(waitForAgreement(expectedDisplays(sway)));
      sway.restart(3);
      ASSERT_TRUE(waitForAgreement(expectedDisplays(sway)));
      session.host.clearRecords();
    }
  };
  round(2);
  const Usage before = usage();
  round(kRounds);
  const Usage after = usage();
  EXPECT_EQ(after.threads, 1U);
  EXPECT_EQ(after.descriptors, before.descriptors);
  EXPECT_LT(after.bytes, before.bytes + kLeastLeak);
}

TEST_F(WaylandGeometry, IsDrawnByTheTool) {
  placeThree();
  const auto drawn = support::run({OSTREVIN_HOST, "layout"}, sway.environment());
  EXPECT_EQ(drawn.exit_status, 0) << drawn.errors;
  const auto listed =
      nlohmann::json::parse(support::runSuccessfully({OSTREVIN_HOST, "list", "--json"}, sway.environment()));
  for (const ExpectedDisplay& display : expectedDisplays(sway)) {
    EXPECT_THAT(drawn.output, HasSubstr(std::to_string(display.number)));
  }
  ASSERT_EQ(listed["displays"].size(), 4u) << listed.dump(1);
}

// --- another compositor

/// What wayland-info prints for weston's only output.
ExpectedDisplay expectedDisplay(const support::WestonSession& weston) {
  const std::string globals = weston.globals();
  const auto number = [&](const std::string& after) {
    std::smatch match;
    EXPECT_TRUE(std::regex_search(globals, match, std::regex(after + R"((-?\d+))"))) << after << " in " << globals;
    return match.empty() ? 0 : std::stoi(match[1]);
  };
  return {.output = "headless",
          .number = static_cast<std::uint32_t>(number(R"('wl_output',\s+version:\s+\d+, name:\s+)")),
          .x = 1.0 * number("logical_x: "),
          .y = 1.0 * number("logical_y: "),
          .width = 1.0 * number("logical_width: "),
          .height = 1.0 * number("logical_height: "),
          .scale = 1.0 * number(R"(scale:\s+)")};
}

TEST(WestonGeometry, AgreesWithWaylandInfo) {
  const std::vector<std::string> plain = {"--width=1440", "--height=900"};
  const std::vector<std::string> scaled_on_its_side = {"--width=1440", "--height=900", "--scale=2",
                                                       "--transform=rotate-90"};
  for (const auto& options : {plain, scaled_on_its_side}) {
    SCOPED_TRACE(options.back());
    const support::WestonSession weston(options);
    const LiveSession session("", weston.socket());
    expectGeometry(session.plugin, {expectedDisplay(weston)});
  }
}

// --- a compositor that is killed during a call

constexpr const char* kProfile = "/usr/share/color/icc/colord/AdobeRGB1998.icc";

struct Method {
  const char* name;
  /// Whether the method, called for the only display, finds it.
  bool (*finds)(const devhost::Plugin& plugin, std::uint32_t number);
};

void PrintTo(const Method& method, std::ostream* out) { *out << method.name; }

class CompositorKilledDuring : public testing::TestWithParam<Method> {
 protected:
  CompositorKilledDuring() {
    const auto edid = support::makeEdid({.name = "Known"});
    folder.write("card0-HEADLESS-1/edid", {reinterpret_cast<const char*>(edid.data()), edid.size()});
    const LiveSession session("", sway.socket());
    EXPECT_TRUE(session.plugin.call("SetProfile", {number(), kProfile}).result.boolean());
  }

  std::uint32_t number() const { return sway.numbers().at("HEADLESS-1"); }

  const support::PrivateColord colord;
  const support::TemporaryFolder folder;
  const support::EnvironmentVariables variables{{{"OSTREVIN_DRM", folder.path()}}};
  SwaySession sway;
};

TEST_P(CompositorKilledDuring, ReturnsWithoutDisplayAndFindsTheNextCompositors) {
  constexpr std::chrono::milliseconds kKillAfter(300);
  constexpr std::chrono::seconds kReplyLimit(2);
  const auto [name, finds] = GetParam();
  const std::uint32_t before = number();
  sway.pause();
  const LiveSession session("", sway.socket());
  const auto begin = std::chrono::steady_clock::now();
  std::thread killer([&] {
    std::this_thread::sleep_for(kKillAfter);
    sway.kill();
  });
  EXPECT_FALSE(finds(session.plugin, before));
  const auto took = std::chrono::steady_clock::now() - begin;
  killer.join();
  EXPECT_GE(took, kKillAfter) << "not killed during the call";
  EXPECT_LT(took, kReplyLimit) << "the call waits for a compositor that has ended";
  EXPECT_FALSE(finds(session.plugin, before));
  sway.restart(1);
  const std::uint32_t after = number();
  const auto deadline = std::chrono::steady_clock::now() + kLimit;
  while (activeDisplays().empty() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_TRUE(finds(session.plugin, after));
}

constexpr Method kMethods[] = {
    {"GetRect",
     [](const auto& plugin, auto number) { return plugin.call("GetRect", {number})["right"].integer() != 0; }},
    {"GetCGRect",
     [](const auto& plugin, auto number) { return plugin.call("GetCGRect", {number})["width"].real() != 0; }},
    {"GetIndex", [](const auto& plugin,
                    auto number) { return plugin.call("GetIndex", {number}).result.unsignedNumber() != kNotFound; }},
    {"GetScale", [](const auto& plugin, auto number) { return plugin.call("GetScale", {number}).result.real() != 0; }},
    {"DisplayIDForWindow",
     [](const auto& plugin, auto number) {
       return plugin.call("DisplayIDForWindow", {0, 0, 10, 10}).result.unsignedNumber() == number;
     }},
    {"GetName",
     [](const auto& plugin, auto number) { return plugin.call("GetName", {number})["name"].text() == "Known"; }},
    {"GetProfilePath", [](const auto& plugin,
                          auto number) { return plugin.call("GetProfilePath", {number})["path"].text() == kProfile; }},
    {"SetProfile",
     [](const auto& plugin, auto number) {
       return plugin.call("SetProfile", {number, kProfile}).result.boolean();
     }},
};

INSTANTIATE_TEST_SUITE_P(Method, CompositorKilledDuring, testing::ValuesIn(kMethods),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace live
