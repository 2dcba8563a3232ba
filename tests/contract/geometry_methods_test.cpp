// The geometry methods through their rows.
#include <cstdint>

#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using contract::Script;
using devhost::RawSlot;
using devhost::Value;
using platform::calls::Call;
using platform::calls::Fault;

constexpr std::uint64_t kNotFound = 4099018739;

using GeometryMethods = MethodTest;

TEST_F(GeometryMethods, GetRectWritesTruncatedEdges) {
  const auto result = plugin.call("GetRect", {2});
  EXPECT_EQ(result["left"].integer(), -1440);
  EXPECT_EQ(result["top"].integer(), 0);
  EXPECT_EQ(result["right"].integer(), 0);
  EXPECT_EQ(result["bottom"].integer(), 900);
}

TEST_F(GeometryMethods, GetRectWritesFourBytesPerEdge) {
  const RawSlot ones{0xFFFFFFFFFFFFFFFF};
  const auto result = plugin.call("GetRect", {3, ones, ones, ones, ones});
  EXPECT_EQ(result.slot("left"), 0xFFFFFFFF000005A0U);
  EXPECT_EQ(result.slot("right"), 0xFFFFFFFF00000D20U);
  EXPECT_EQ(result.slot("bottom"), 0xFFFFFFFF000003D4U);
}

TEST_F(GeometryMethods, GetCGRectWritesOriginAndSize) {
  const auto result = plugin.call("GetCGRect", {2});
  EXPECT_EQ(result["x"].real(), -1440.5);
  EXPECT_EQ(result["y"].real(), 0.0);
  EXPECT_EQ(result["width"].real(), 1440.0);
  EXPECT_EQ(result["height"].real(), 900.0);
}

TEST_F(GeometryMethods, GetIndexReturnsThePosition) {
  EXPECT_EQ(plugin.call("GetIndex", {1}).result.unsignedNumber(), 0U);
  EXPECT_EQ(plugin.call("GetIndex", {3}).result.unsignedNumber(), 2U);
}

TEST_F(GeometryMethods, GetIndexReturns4099018739ForUnknownDisplay) {
  EXPECT_EQ(plugin.call("GetIndex", {0}).result.unsignedNumber(), kNotFound);
  EXPECT_EQ(plugin.call("GetIndex", {4294967295U}).result.unsignedNumber(), kNotFound);
}

TEST_F(GeometryMethods, GetScaleReturnsTheBackingScale) {
  EXPECT_EQ(plugin.call("GetScale", {1}).result.real(), 2.0);
  EXPECT_EQ(plugin.call("GetScale", {2}).result.real(), 1.0);
  // The third screen's frame is 20 points off, which no tolerance covers.
  EXPECT_EQ(plugin.call("GetScale", {3}).result.real(), 2.0);
}

TEST_F(GeometryMethods, DisplayIDForWindowTestsTheRectangleBelowTheWindow) {
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {100, -100, 100, 100}).result.unsignedNumber(), 1U);
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {-200, 0, 100, 100}).result.unsignedNumber(), 2U);
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {100, 800, 100, 100}).result.unsignedNumber(), 0U);
}

TEST_F(GeometryMethods, DisplayIDForWindowTakesTheFullRangeOfIntegers) {
  constexpr std::int64_t kLeast = -2147483648LL;
  constexpr std::int64_t kGreatest = 2147483647LL;
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {kGreatest, kGreatest, kGreatest, kGreatest}).result.unsignedNumber(),
            0U);
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {kLeast, kLeast, kGreatest, kGreatest}).result.unsignedNumber(), 2U)
      << "everything left of the main display and below its upper edge";
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {-1000, -2147480000LL, kGreatest, 2147480000LL}).result.unsignedNumber(),
            1U);
}

TEST_F(GeometryMethods, NothingIsCachedBetweenCalls) {
  session.desktop->change([](Script& script) {
    script.arrangement.displays.erase(script.arrangement.displays.begin() + 1);
    script.arrangement.displays[1].bounds.x = 5000;
  });
  EXPECT_EQ(plugin.call("GetIndex", {2}).result.unsignedNumber(), kNotFound);
  EXPECT_EQ(plugin.call("GetIndex", {3}).result.unsignedNumber(), 1U);
  EXPECT_EQ(plugin.call("GetCGRect", {3})["x"].real(), 5000.0);
}

TEST(GeometryMethodsAtScale, SixtyFourDisplays) {
  Script script;
  for (std::uint32_t i = 1; i <= 64; ++i) {
    script.arrangement.displays.push_back(support::display(i, {100.0 * i, 0, 100, 100}));
  }
  const support::ScriptedSession session(script);
  devhost::Host host;
  const auto plugin = support::loadFreshPlugin(host);
  for (std::uint32_t i = 1; i <= 64; ++i) {
    EXPECT_EQ(plugin.call("GetIndex", {i}).result.unsignedNumber(), i - 1);
    EXPECT_EQ(plugin.call("GetCGRect", {i})["x"].real(), 100.0 * i);
    EXPECT_EQ(plugin.call("DisplayIDForWindow", {100 * i + 1, -10, 10, 20}).result.unsignedNumber(), i);
  }
}

TEST(GeometryMethodsWithoutDisplays, ReturnFailureValues) {
  const support::ScriptedSession session;
  devhost::Host host;
  const auto plugin = support::loadFreshPlugin(host);
  EXPECT_EQ(plugin.call("GetIndex", {1}).result.unsignedNumber(), kNotFound);
  EXPECT_EQ(plugin.call("GetScale", {1}).result.real(), 0.0);
  EXPECT_EQ(plugin.call("GetRect", {1})["right"].integer(), 0);
  EXPECT_EQ(plugin.call("GetCGRect", {1})["width"].real(), 0.0);
  EXPECT_EQ(plugin.call("DisplayIDForWindow", {0, 0, 10, 10}).result.unsignedNumber(), 0U);
}

}  // namespace
