#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/x11/x11_displays.h"
#include "live/agreement.h"
#include "support/xorg_server.h"

namespace {

using live::expectAgreement;
using live::liveDesktopOf;
using platform::desktop::Rect;
using platform::desktop::X11Displays;
using support::NestedServer;
using support::XorgServer;

class LiveDisplays : public testing::Test {
 protected:
  void placeThree() {
    server.place(
        {{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  }

  XorgServer server;
  std::shared_ptr<platform::desktop::Desktop> desktop = liveDesktopOf(server);
};

TEST_F(LiveDisplays, AgreeWithXrandrOnThreeOutputs) {
  placeThree();
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->displays.size(), 3u);
  expectAgreement(server, *arrangement);
}

TEST_F(LiveDisplays, FollowAnOutputThatMoves) {
  placeThree();
  const auto before = desktop->arrangement();
  server.setMode("DUMMY1", 1280, 1024, 2000, 0);
  const auto after = desktop->arrangement();
  expectAgreement(server, *after);
  EXPECT_EQ(after->displays[1].number, before->displays[1].number);
  EXPECT_EQ(after->displays[1].uuid, before->displays[1].uuid);
  EXPECT_EQ(after->displays[1].bounds, (Rect{2000, 0, 1280, 1024}));
  EXPECT_EQ(before->displays[1].bounds, (Rect{1920, 56, 1280, 1024})) << "what was answered before stays as it was";
}

TEST_F(LiveDisplays, FollowAnOutputThatGoesOffAndOn) {
  placeThree();
  const auto before = desktop->arrangement();
  server.off("DUMMY1");
  const auto without = desktop->arrangement();
  ASSERT_EQ(without->displays.size(), 2u);
  expectAgreement(server, *without);
  EXPECT_EQ(without->displays[1].number, before->displays[2].number);
  server.setMode("DUMMY1", 1280, 1024, 1920, 56);
  const auto again = desktop->arrangement();
  expectAgreement(server, *again);
  EXPECT_EQ(again->displays[1].number, before->displays[1].number);
}

TEST_F(LiveDisplays, FollowAnOutputThatChangesItsSize) {
  placeThree();
  desktop->arrangement();
  server.setMode("DUMMY2", 1024, 768, 300, 1080);
  expectAgreement(server, *desktop->arrangement());
}

TEST_F(LiveDisplays, BeginWithThePrimaryOutputAtTheOrigin) {
  placeThree();
  server.makePrimary("DUMMY2");
  const auto arrangement = desktop->arrangement();
  expectAgreement(server, *arrangement);
  EXPECT_EQ(arrangement->displays[0].connector, "DUMMY2");
  EXPECT_EQ(arrangement->displays[0].bounds, (Rect{0, 0, 800, 600}));
  EXPECT_EQ(arrangement->displays[1].connector, "DUMMY0");
  EXPECT_EQ(arrangement->displays[1].bounds, (Rect{-300, -1080, 1920, 1080}));
  EXPECT_EQ(arrangement->displays[2].connector, "DUMMY1");
}

TEST_F(LiveDisplays, FollowAChangeOfThePrimaryOutput) {
  placeThree();
  const auto before = desktop->arrangement();
  server.makePrimary("DUMMY1");
  const auto after = desktop->arrangement();
  expectAgreement(server, *after);
  EXPECT_EQ(after->displays[0].number, before->displays[1].number);
  server.makePrimary("DUMMY0");
  expectAgreement(server, *desktop->arrangement());
}

TEST_F(LiveDisplays, BeginWithTheServersFirstWhenNoneIsPrimary) {
  placeThree();
  server.removePrimary();
  const auto arrangement = desktop->arrangement();
  expectAgreement(server, *arrangement);
  EXPECT_EQ(arrangement->displays[0].connector, "DUMMY0");
}

TEST_F(LiveDisplays, AreTheSameInASecondDesktop) {
  placeThree();
  const auto first = desktop->arrangement();
  const auto second = liveDesktopOf(server)->arrangement();
  ASSERT_EQ(first->displays.size(), second->displays.size());
  for (std::size_t i = 0; i < first->displays.size(); ++i) {
    EXPECT_EQ(first->displays[i].number, second->displays[i].number);
    EXPECT_EQ(first->displays[i].uuid, second->displays[i].uuid);
  }
}

TEST_F(LiveDisplays, CanBeSixteen) {
  std::vector<XorgServer::Placement> placements;
  for (int i = 0; i < 16; ++i) {
    placements.push_back({"DUMMY" + std::to_string(i), {640, 480, 640 * (i % 4), 480 * (i / 4)}});
  }
  server.place(placements);
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->displays.size(), 16u);
  expectAgreement(server, *arrangement);
}

TEST_F(LiveDisplays, CanBeSixtyFourUserDefinedMonitors) {
  server.setMode("DUMMY0", 3200, 1800, 0, 0);
  desktop->arrangement();
  for (int i = 0; i < 64; ++i) {
    const std::string area = "400/100x225/60+" + std::to_string(400 * (i % 8)) + "+" + std::to_string(225 * (i / 8));
    server.setMonitor("part-" + std::to_string(i), area, i == 0 ? "DUMMY0" : "none");
  }
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->displays.size(), 64u);
  expectAgreement(server, *arrangement);
}

TEST_F(LiveDisplays, FollowAUserDefinedMonitor) {
  server.setMode("DUMMY0", 1600, 1200, 0, 0);
  const auto before = desktop->arrangement();
  server.setMonitor("left", "800/200x1200/300+0+0", "DUMMY0");
  server.setMonitor("right", "800/200x1200/300+800+0", "none");
  const auto split = desktop->arrangement();
  ASSERT_EQ(split->displays.size(), 2u);
  expectAgreement(server, *split);
  server.removeMonitor("left");
  server.removeMonitor("right");
  const auto after = desktop->arrangement();
  expectAgreement(server, *after);
  ASSERT_EQ(after->displays.size(), 1u);
  EXPECT_EQ(after->displays[0].number, before->displays[0].number);
}

TEST_F(LiveDisplays, NeedNoRoundTripWhileNothingChanges) {
  placeThree();
  const auto first = desktop->arrangement();
  const auto before = platform::desktop::x11RoundTrips();
  EXPECT_GT(before, 0u);
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(desktop->arrangement(), first);
  }
  EXPECT_EQ(platform::desktop::x11RoundTrips(), before);
  server.setMode("DUMMY1", 1280, 1024, 1920, 0);
  EXPECT_NE(desktop->arrangement(), first);
  EXPECT_GT(platform::desktop::x11RoundTrips(), before);
}

TEST_F(LiveDisplays, NeedNoRoundTripForUnrelatedChanges) {
  placeThree();
  const auto first = desktop->arrangement();
  const auto before = platform::desktop::x11RoundTrips();
  support::runSuccessfully({"xprop", "-root", "-f", "_TEST_THING", "8s", "-set", "_TEST_THING", "other"},
                           server.environment());
  server.sync();
  EXPECT_EQ(desktop->arrangement(), first);
  EXPECT_EQ(platform::desktop::x11RoundTrips(), before);
}

TEST_F(LiveDisplays, AreTheSameForManyThreadsWhileOutputsMove) {
  placeThree();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int call = 0; call < 300; ++call) {
        const auto arrangement = desktop->arrangement();
        ASSERT_EQ(arrangement->displays.size(), arrangement->screens.size());
        ASSERT_FALSE(arrangement->displays.empty());
      }
    });
  }
  for (int x = 1920; x < 1925; ++x) {
    server.setMode("DUMMY1", 1280, 1024, x, 0);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  expectAgreement(server, *desktop->arrangement());
}

TEST_F(LiveDisplays, AgreeWithXrandrOnAServerWithoutMonitors) {
  placeThree();
  server.makePrimary("DUMMY1");
  for (const std::uint32_t minor : {4u, 3u}) {
    X11Displays displays({.display = server.display(), .newest_randr_minor = minor});
    expectAgreement(server, *displays.arrangement());
    server.off("DUMMY2");
    expectAgreement(server, *displays.arrangement());
    placeThree();
    expectAgreement(server, *displays.arrangement());
  }
}

TEST_F(LiveDisplays, AgreeWithXrandrOnAServerWithoutAPrimaryOutput) {
  placeThree();
  server.removePrimary();
  X11Displays displays({.display = server.display(), .newest_randr_minor = 2});
  expectAgreement(server, *displays.arrangement());
}

TEST_F(LiveDisplays, AreNoneOnAServerWithoutOutputs) {
  X11Displays displays({.display = server.display(), .newest_randr_minor = 1});
  EXPECT_TRUE(displays.arrangement()->displays.empty());
}

TEST_F(LiveDisplays, HaveTheSizeOfARotatedOutput) {
  NestedServer nested(server, 640, 480);
  const auto rotatable = liveDesktopOf(nested);
  X11Displays by_output({.display = nested.display(), .newest_randr_minor = 4});
  ASSERT_EQ(rotatable->arrangement()->displays.at(0).bounds, (Rect{0, 0, 640, 480}));
  for (const char* const direction : {"left", "inverted", "right", "normal"}) {
    SCOPED_TRACE(direction);
    nested.rotate(direction);
    expectAgreement(nested, *rotatable->arrangement());
    expectAgreement(nested, *by_output.arrangement());
  }
  nested.rotate("left");
  EXPECT_EQ(rotatable->arrangement()->displays.at(0).bounds, (Rect{0, 0, 480, 640}));
}

}  // namespace
