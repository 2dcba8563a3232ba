// The geometry methods of the built plugin, compared with xrandr.
#include <gmock/gmock.h>

#include <array>
#include <cmath>

#include "desktop/x11/x11_displays.h"
#include "live/live_plugin.h"

namespace live {
namespace {

using platform::desktop::x11RoundTrips;
using support::XorgServer;
using testing::IsEmpty;

constexpr std::uint64_t kNotFound = 4099018739;

std::int64_t truncated(double value) { return static_cast<std::int64_t>(std::trunc(value)); }

/// The first display that has area in common with the rectangle; 0 when none has.
std::uint32_t firstUnder(const std::vector<ExpectedDisplay>& displays, double x, double y, double width,
                         double height) {
  for (const ExpectedDisplay& display : displays) {
    if (x < display.x + display.width && display.x < x + width && y < display.y + display.height &&
        display.y < y + height) {
      return display.number;
    }
  }
  return 0;
}

class LiveGeometry : public testing::Test {
 protected:
  void placeThree() {
    server.place(
        {{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  }

  void expectRect(const ExpectedDisplay& display) {
    const auto rect = plugin.call("GetRect", {display.number});
    EXPECT_EQ(rect["left"].integer(), truncated(display.x));
    EXPECT_EQ(rect["top"].integer(), truncated(display.y));
    EXPECT_EQ(rect["right"].integer(), truncated(display.x + display.width));
    EXPECT_EQ(rect["bottom"].integer(), truncated(display.y + display.height));
  }

  void expectCGRect(const ExpectedDisplay& display) {
    const auto rect = plugin.call("GetCGRect", {display.number});
    EXPECT_EQ(rect["x"].real(), display.x);
    EXPECT_EQ(rect["y"].real(), display.y);
    EXPECT_EQ(rect["width"].real(), display.width);
    EXPECT_EQ(rect["height"].real(), display.height);
  }

  /// Small windows all over the desktop and a little beyond it, and some that lie on several displays. The method looks
  /// at the rectangle below the window.
  void expectDisplaysUnderWindows(const std::vector<ExpectedDisplay>& displays) {
    constexpr int kStep = 173;
    for (const int size : {1, 900}) {
      for (int left = -1500; left < 3500; left += kStep) {
        for (int top = -1500; top < 2500; top += kStep) {
          ASSERT_EQ(plugin.call("DisplayIDForWindow", {left, top, size, size}).result.unsignedNumber(),
                    firstUnder(displays, left, top + size, size, size))
              << "window of " << size << " at " << left << ", " << top;
        }
      }
    }
  }

  /// Compares every geometry method with xrandr.
  void expectAgreement(std::size_t count, double scale = 1) {
    const auto displays = expectedDisplays(server, scale);
    ASSERT_EQ(displays.size(), count);
    std::vector<std::uint32_t> numbers;
    for (std::size_t i = 0; i < displays.size(); ++i) {
      SCOPED_TRACE(displays[i].output);
      numbers.push_back(displays[i].number);
      EXPECT_EQ(plugin.call("GetIndex", {displays[i].number}).result.unsignedNumber(), i);
      EXPECT_EQ(plugin.call("GetScale", {displays[i].number}).result.real(), scale);
      expectRect(displays[i]);
      expectCGRect(displays[i]);
    }
    EXPECT_EQ(activeDisplays(), numbers);
    expectDisplaysUnderWindows(displays);
  }

  /// Expects every method's result for an unknown display, on a desktop of this scale.
  void expectGone(std::uint32_t number, double scale) {
    EXPECT_EQ(plugin.call("GetIndex", {number}).result.unsignedNumber(), kNotFound);
    EXPECT_EQ(plugin.call("GetScale", {number}).result.real(), scale);
    expectRect({.number = number});
    expectCGRect({.number = number});
  }

  void expectNoDisplays(std::uint32_t number) {
    EXPECT_THAT(activeDisplays(), IsEmpty());
    expectGone(number, 0);
    EXPECT_EQ(plugin.call("DisplayIDForWindow", {100, 100, 100, 100}).result.unsignedNumber(), 0U);
  }

  XorgServer server{XorgServer::reservedDisplay()};
  LiveSession session{server.display()};
  const devhost::Plugin& plugin = session.plugin;
};

TEST_F(LiveGeometry, AgreesWithXrandrOnThreeOutputs) {
  placeThree();
  expectAgreement(3);
}

TEST_F(LiveGeometry, FollowsAnOutputThatGoesOffAndOn) {
  placeThree();
  expectAgreement(3);
  const std::uint32_t number = server.output("DUMMY1").id;
  server.off("DUMMY1");
  expectGone(number, 1);
  expectAgreement(2);
  placeThree();
  expectAgreement(3);
}

TEST_F(LiveGeometry, FollowsTwoChangesAtOnce) {
  placeThree();
  expectAgreement(3);
  server.setMode("DUMMY2", 800, 600, 0, 1200);
  server.off("DUMMY1");
  expectAgreement(2);
}

TEST_F(LiveGeometry, IsRelativeToThePrimaryOutput) {
  placeThree();
  server.makePrimary("DUMMY2");
  EXPECT_EQ(plugin.call("GetRect", {server.output("DUMMY0").id})["left"].integer(), -300);
  EXPECT_EQ(plugin.call("GetRect", {server.output("DUMMY0").id})["top"].integer(), -1080);
  expectAgreement(3);
}

TEST_F(LiveGeometry, IsInPointsOfTheDesktopsScale) {
  placeThree();
  expectAgreement(3, 1);
  server.setResources("Xft.dpi: 192\n");
  expectAgreement(3, 2);
  server.setResources("Xft.dpi: 144\n");
  expectAgreement(3, 1.5);
}

TEST_F(LiveGeometry, NeedsNoRoundTripWhileNothingChanges) {
  placeThree();
  const auto displays = expectedDisplays(server);
  ASSERT_EQ(plugin.call("GetIndex", {displays[2].number}).result.unsignedNumber(), 2U);
  const auto before = x11RoundTrips();
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
  EXPECT_EQ(x11RoundTrips(), before);
  server.off("DUMMY2");
  EXPECT_EQ(plugin.call("GetIndex", {displays[2].number}).result.unsignedNumber(), kNotFound);
  EXPECT_GT(x11RoundTrips(), before);
}

TEST_F(LiveGeometry, HasNoDisplaysAfterTheServerIsKilled) {
  placeThree();
  const std::uint32_t number = server.output("DUMMY1").id;
  ASSERT_EQ(plugin.call("GetIndex", {number}).result.unsignedNumber(), 1U);
  server.kill();
  for (int i = 0; i < 20; ++i) {
    expectNoDisplays(number);
  }
}

class LiveGeometryWithoutAServer : public testing::TestWithParam<const char*> {};

TEST_P(LiveGeometryWithoutAServer, HasNoDisplays) {
  const LiveSession session(GetParam());
  EXPECT_THAT(activeDisplays(), IsEmpty());
  EXPECT_EQ(session.plugin.call("GetIndex", {1}).result.unsignedNumber(), kNotFound);
  EXPECT_EQ(session.plugin.call("GetScale", {1}).result.real(), 0.0);
  EXPECT_EQ(session.plugin.call("GetRect", {1})["right"].integer(), 0);
  EXPECT_EQ(session.plugin.call("GetCGRect", {1})["width"].real(), 0.0);
  EXPECT_EQ(session.plugin.call("DisplayIDForWindow", {0, 0, 10, 10}).result.unsignedNumber(), 0U);
}

std::string nameOfDisplay(const testing::TestParamInfo<const char*>& info) {
  return std::array{"Empty", "Unused", "Malformed"}.at(info.index);
}

INSTANTIATE_TEST_SUITE_P(Display, LiveGeometryWithoutAServer, testing::Values("", ":59999", "nonsense"), nameOfDisplay);

}  // namespace
}  // namespace live
