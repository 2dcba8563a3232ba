#include "display/screens.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/scripted.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::Script;
using support::display;
using support::screen;
using support::ScriptedSession;

/// One display at `bounds`, one screen at `frame` with scale 2, and a main screen elsewhere with scale 1.
Script displayAndScreen(platform::desktop::Rect bounds, platform::desktop::Rect frame) {
  Script script;
  script.arrangement.displays = {display(7, bounds)};
  script.arrangement.screens = {screen({9000, 9000, 10, 10}, 1), screen(frame, 2)};
  script.arrangement.main_screen = 0;
  return script;
}

constexpr double kMatched = 2;
constexpr double kMainScreen = 1;

TEST(ScaleFactorForDisplay, MatchesAScreenWithTheDisplaysBounds) {
  const ScriptedSession session(displayAndScreen({0, 0, 1440, 900}, {0, 0, 1440, 900}));
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMatched);
}

TEST(ScaleFactorForDisplay, MatchesAScreenExactly30PointsAbove) {
  const ScriptedSession session(displayAndScreen({0, 130, 1440, 900}, {0, 100, 1440, 900}));
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMatched);
}

TEST(ScaleFactorForDisplay, ReturnsTheMainScreensForAnotherY) {
  for (const double y : {129.0, 131.0, 70.0, 130.5, 129.99999999999997}) {
    const ScriptedSession session(displayAndScreen({0, y, 1440, 900}, {0, 100, 1440, 900}));
    EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMainScreen) << y;
  }
}

TEST(ScaleFactorForDisplay, ReturnsTheMainScreensForAnotherXOrSize) {
  const platform::desktop::Rect bounds{10, 20, 1440, 900};
  for (const platform::desktop::Rect frame :
       {platform::desktop::Rect{11, 20, 1440, 900}, {10, 20, 1441, 900}, {10, 20, 1440, 899.5}, {40, 20, 1440, 900}}) {
    const ScriptedSession session(displayAndScreen(bounds, frame));
    EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMainScreen);
  }
}

TEST(ScaleFactorForDisplay, DoesNotConvertCoordinates) {
  // A monitor below the main one: y 900 in CoreGraphics, -600 in AppKit. They are the same place, and do not match.
  const ScriptedSession session(displayAndScreen({0, 900, 800, 600}, {0, -600, 800, 600}));
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMainScreen);
}

TEST(ScaleFactorForDisplay, NeverMatchesANaN) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const ScriptedSession session(displayAndScreen({0, kNaN, 1440, 900}, {0, kNaN, 1440, 900}));
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMainScreen);
}

TEST(ScaleFactorForDisplay, ReturnsTheFirstMatch) {
  auto script = displayAndScreen({0, 30, 1440, 900}, {0, 0, 1440, 900});
  script.arrangement.screens.push_back(screen({0, 30, 1440, 900}, 3));
  const ScriptedSession session(script);
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMatched);
}

TEST(ScaleFactorForDisplay, ReturnsTheMainScreensForUnknownDisplay) {
  const ScriptedSession session(displayAndScreen({0, 0, 1440, 900}, {0, 0, 1440, 900}));
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(0), kMainScreen);
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(8), kMainScreen);
}

TEST(ScaleFactorForDisplay, TreatsAnEmptyElementAsTheZeroRectangle) {
  // The bounds of an unknown display are all zero too: the empty element is what matches, and it has no scale.
  auto script = displayAndScreen({0, 0, 1440, 900}, {0, 0, 1440, 900});
  script.arrangement.screens.insert(script.arrangement.screens.begin(), {std::nullopt, 5});
  script.arrangement.main_screen = 1;
  const ScriptedSession session(script);
  EXPECT_EQ(DisplayServices::ScreenWithDisplayID(99), nullptr);
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(99), 0.0);
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), kMatched);
}

TEST(ScaleFactorForDisplay, Returns0WithoutAMainScreen) {
  auto script = displayAndScreen({0, 0, 1440, 900}, {5, 5, 5, 5});
  script.arrangement.main_screen.reset();
  const ScriptedSession session(script);
  EXPECT_EQ(DisplayServices::ScreenWithDisplayID(7), nullptr);
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), 0.0);
}

TEST(ScaleFactorForDisplay, Returns0WithoutScreens) {
  const ScriptedSession session;
  EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), 0.0);
}

TEST(ScaleFactorForDisplay, ReturnsTheFactorUnchanged) {
  for (const double scale : {0.0, 0.5, 1.25, 2.0, -1.0}) {
    auto script = displayAndScreen({0, 0, 1440, 900}, {0, 0, 1440, 900});
    script.arrangement.screens[1].backing_scale = scale;
    const ScriptedSession session(script);
    EXPECT_EQ(DisplayServices::ScaleFactorForDisplay(7), scale);
  }
}

TEST(ScreenWithDisplayID, ReturnsTheSameScreenWithoutChanges) {
  const ScriptedSession session(displayAndScreen({0, 0, 1440, 900}, {0, 0, 1440, 900}));
  const NSScreen* const first = DisplayServices::ScreenWithDisplayID(7);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(DisplayServices::ScreenWithDisplayID(7), first);
}

Script twoDisplays() {
  Script script;
  script.arrangement.displays = {display(1, {0, 0, 100, 100}), display(2, {100, 0, 100, 100})};
  return script;
}

TEST(DisplayIDForRect, ReturnsTheDisplayUnderTheRectangle) {
  const ScriptedSession session(twoDisplays());
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(10, 10, 20, 20)), 1U);
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(110, 10, 20, 20)), 2U);
}

TEST(DisplayIDForRect, ReturnsTheFirstOfTwoDisplays) {
  const ScriptedSession session(twoDisplays());
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(99, 0, 101, 100)), 1U);
}

TEST(DisplayIDForRect, Returns0WithoutADisplay) {
  const ScriptedSession session(twoDisplays());
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(0, 100, 50, 50)), 0U);
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(-50, 0, 50, 50)), 0U);
}

TEST(DisplayIDForRect, Returns0AfterAnError) {
  const ScriptedSession session(twoDisplays());
  platform::calls::setHook(Call::CGGetDisplaysWithRect, [](std::uint64_t) { return Fault{.fail = true}; });
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(10, 10, 20, 20)), 0U);
}

TEST(DisplayIDForRect, Returns0AfterAnErrorWithAList) {
  const ScriptedSession session(twoDisplays());
  platform::calls::setHook(Call::CGGetDisplaysWithRect,
                           [](std::uint64_t) { return Fault{.late_error = kCGErrorFailure}; });
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(10, 10, 20, 20)), 0U);
}

TEST(DisplayIDForRect, IgnoresTheCount) {
  const ScriptedSession session(twoDisplays());
  platform::calls::setHook(Call::CGGetDisplaysWithRect, [](std::uint64_t) { return Fault{.number = 0}; });
  EXPECT_EQ(DisplayServices::DisplayIDForRect(CGRectMake(110, 10, 20, 20)), 2U);
}

}  // namespace
