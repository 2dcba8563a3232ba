// The geometry methods of the built plugin, compared with xrandr.
#include <gmock/gmock.h>

#include <array>

#include "desktop/x11/x11_displays.h"
#include "live/live_plugin.h"

namespace live {
namespace {

using platform::desktop::x11RoundTrips;
using support::XorgServer;
using testing::IsEmpty;

constexpr std::uint64_t kNotFound = 4099018739;

class LiveGeometry : public testing::Test {
 protected:
  void placeThree() {
    server.place(
        {{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  }

  /// Compares every geometry method with xrandr.
  void expectAgreement(std::size_t count, double scale = 1) {
    const auto displays = expectedDisplays(server, scale);
    ASSERT_EQ(displays.size(), count);
    expectGeometry(plugin, displays);
  }

  /// Expects every method's result for an unknown display, on a desktop of this scale.
  void expectGone(std::uint32_t number, double scale) {
    EXPECT_EQ(plugin.call("GetIndex", {number}).result.unsignedNumber(), kNotFound);
    EXPECT_EQ(plugin.call("GetScale", {number}).result.real(), scale);
    expectRect(plugin, {.number = number});
    expectCGRect(plugin, {.number = number});
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
