#include <CoreGraphics/CoreGraphics.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <ostream>

#include "base/interface.h"
#include "plugin/display.h"
#include "support/scripted.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::Rect;
using platform::desktop::Script;
using support::display;
using support::faultOnce;
using support::ScriptedSession;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr auto kNotFound = static_cast<std::uint32_t>(kQVIDisplayNotFound);

struct Edges {
  std::int32_t left = 1;
  std::int32_t top = 2;
  std::int32_t right = 3;
  std::int32_t bottom = 4;
  friend bool operator==(const Edges&, const Edges&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Edges& edges) {
    return out << edges.left << ' ' << edges.top << ' ' << edges.right << ' ' << edges.bottom;
  }
};

Edges edgesOf(std::uint32_t number) {
  Edges edges;
  Display::GetMonitorRect(number, &edges.left, &edges.top, &edges.right, &edges.bottom);
  return edges;
}

std::array<double, 4> rectOf(std::uint32_t number) {
  std::array<double, 4> rect{};
  Display::GetMonitorRect(number, &rect[0], &rect[1], &rect[2], &rect[3]);
  return rect;
}

Script oneDisplay(Rect bounds) {
  Script script;
  script.arrangement.displays = {display(1, bounds)};
  return script;
}

Script displays(std::uint32_t count) {
  Script script;
  for (std::uint32_t i = 0; i < count; ++i) {
    script.arrangement.displays.push_back(display(100 + i, {100.0 * i, 0, 100, 100}));
  }
  return script;
}

TEST(GetMonitorRect, TruncatesTowardZero) {
  const ScriptedSession session(oneDisplay({-1440.5, 0, 1440, 900}));
  EXPECT_EQ(edgesOf(1), (Edges{-1440, 0, 0, 900}));
  EXPECT_EQ(rectOf(1), (std::array<double, 4>{-1440.5, 0, 1440, 900}));
}

TEST(GetMonitorRect, SumsBeforeTruncating) {
  const ScriptedSession session(oneDisplay({0.6, -3.9, 0.6, 0.3}));
  EXPECT_EQ(edgesOf(1), (Edges{0, -3, 1, -3}));
}

TEST(GetMonitorRect, ReportsPointsAtAnyScale) {
  for (const double scale : {1.0, 2.0}) {
    auto script = oneDisplay({0, 0, 1440, 900});
    script.arrangement.screens = {support::screen({0, 0, 1440, 900}, scale)};
    script.arrangement.main_screen = 0;
    const ScriptedSession session(script);
    EXPECT_EQ(edgesOf(1), (Edges{0, 0, 1440, 900}));
    EXPECT_EQ(rectOf(1), (std::array<double, 4>{0, 0, 1440, 900}));
  }
}

TEST(GetMonitorRect, CallsForTheScale) {
  const ScriptedSession session(oneDisplay({0, 0, 1440, 900}));
  const auto before = platform::calls::count(Call::NSScreen_screens);
  edgesOf(1);
  EXPECT_EQ(platform::calls::count(Call::NSScreen_screens), before + 1);
  rectOf(1);
  EXPECT_EQ(platform::calls::count(Call::NSScreen_screens), before + 2);
}

TEST(GetMonitorRect, ReturnsTheLeastNumberForNaNAndInfinity) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const ScriptedSession session(oneDisplay({kNaN, kInfinity, 1, -kInfinity}));
  EXPECT_EQ(edgesOf(1), (Edges{kLeast, kLeast, kLeast, kLeast}));
}

TEST(GetMonitorRect, ReturnsTheLeastNumberBeyond32Bits) {
  const ScriptedSession session(oneDisplay({2147483648.0, -2147483649.0, 1e300, -1}));
  EXPECT_EQ(edgesOf(1), (Edges{kLeast, kLeast, kLeast, kLeast}));
}

TEST(GetMonitorRect, KeepsTheGreatestAndLeast32BitNumbers) {
  const ScriptedSession session(oneDisplay({2147483647.0, -2147483648.0, 0.9, -0.9}));
  EXPECT_EQ(edgesOf(1), (Edges{2147483647, kLeast, 2147483647, kLeast}));
}

TEST(GetMonitorRect, ReturnsTheEmptyRectangleForUnknownDisplay) {
  const ScriptedSession session(oneDisplay({10, 10, 10, 10}));
  EXPECT_EQ(edgesOf(0), (Edges{0, 0, 0, 0}));
  EXPECT_EQ(rectOf(77), (std::array<double, 4>{0, 0, 0, 0}));
}

TEST(GetMonitorRect, WritesTopBottomLeftRightInOrder) {
  const ScriptedSession session(oneDisplay({10, 20, 300, 400}));
  std::int32_t both = 0;
  std::int32_t other = 0;
  std::int32_t another = 0;
  Display::GetMonitorRect(1, &other, &both, &another, &both);
  EXPECT_EQ(both, 420) << "bottom after top";
  Display::GetMonitorRect(1, &both, &other, &another, &both);
  EXPECT_EQ(both, 10) << "left after bottom";
  Display::GetMonitorRect(1, &both, &other, &both, &another);
  EXPECT_EQ(both, 310) << "right after left";
}

TEST(GetMonitorRect, WritesXYWidthHeightInOrder) {
  const ScriptedSession session(oneDisplay({10, 20, 300, 400}));
  double both = 0;
  double other = 0;
  double another = 0;
  Display::GetMonitorRect(1, &both, &both, &other, &another);
  EXPECT_EQ(both, 20) << "y after x";
  Display::GetMonitorRect(1, &other, &both, &both, &another);
  EXPECT_EQ(both, 300) << "width after y";
  Display::GetMonitorRect(1, &other, &another, &both, &both);
  EXPECT_EQ(both, 400) << "height after width";
}

TEST(GetIndex, ReturnsThePosition) {
  const ScriptedSession session(displays(3));
  EXPECT_EQ(Display::GetIndex(100), 0U);
  EXPECT_EQ(Display::GetIndex(101), 1U);
  EXPECT_EQ(Display::GetIndex(102), 2U);
}

TEST(GetIndex, Returns4099018739ForUnknownDisplay) {
  const ScriptedSession session(displays(3));
  EXPECT_EQ(Display::GetIndex(0), 4099018739U);
  EXPECT_EQ(Display::GetIndex(103), kNotFound);
}

TEST(GetIndex, CountsTheNumber0LikeAnyOther) {
  Script script = displays(3);
  script.arrangement.displays[1].number = 0;
  const ScriptedSession session(script);
  EXPECT_EQ(Display::GetIndex(0), 1U);
  EXPECT_EQ(Display::GetIndex(102), 2U);
}

TEST(GetIndex, ReturnsNotFoundAfterOneCallWithoutDisplays) {
  const ScriptedSession session(displays(0));
  const auto before = platform::calls::count(Call::CGGetActiveDisplayList);
  EXPECT_EQ(Display::GetIndex(100), kNotFound);
  EXPECT_EQ(platform::calls::count(Call::CGGetActiveDisplayList), before + 1);
}

TEST(GetIndex, HasNoLimitOnTheNumberOfDisplays) {
  const ScriptedSession session(displays(1000));
  EXPECT_EQ(Display::GetIndex(100 + 63), 63U);
  EXPECT_EQ(Display::GetIndex(100 + 999), 999U);
}

TEST(GetIndex, IgnoresAnErrorWithACount) {
  const ScriptedSession session(displays(3));
  faultOnce(Call::CGGetActiveDisplayList, 1, {.late_error = kCGErrorFailure});
  EXPECT_EQ(Display::GetIndex(101), 1U);
}

/// Leaves 1s where the next call's variables will be, so that a count that is not initialised is not 0 by chance.
__attribute__((noinline)) void fillStack() {
  volatile std::uint32_t words[4096];
  for (volatile std::uint32_t& word : words) {
    word = 1;
  }
}

TEST(GetIndex, ReturnsNotFoundAfterOneCallWithoutACount) {
  const ScriptedSession session(displays(3));
  faultOnce(Call::CGGetActiveDisplayList, 1, {.fail = true});  // which leaves the count untouched
  const auto before = platform::calls::count(Call::CGGetActiveDisplayList);
  fillStack();
  EXPECT_EQ(Display::GetIndex(100), kNotFound);
  EXPECT_EQ(platform::calls::count(Call::CGGetActiveDisplayList), before + 1);
}

TEST(GetIndex, ReturnsNotFoundWhenListingFails) {
  const ScriptedSession session(displays(3));
  faultOnce(Call::CGGetActiveDisplayList, 2, {.fail = true});
  EXPECT_EQ(Display::GetIndex(101), kNotFound);
}

TEST(GetIndex, ReturnsNotFoundAfterAnErrorWithAList) {
  const ScriptedSession session(displays(3));
  faultOnce(Call::CGGetActiveDisplayList, 2, {.late_error = kCGErrorFailure});
  EXPECT_EQ(Display::GetIndex(101), kNotFound);
}

/// Hooks the second question so that the desktop has `count` displays by then.
void changeBetweenTheQuestions(const ScriptedSession& session, std::uint32_t count) {
  platform::calls::setHook(Call::CGGetActiveDisplayList, [&session, count](std::uint64_t nth) {
    if (nth == 2) {
      session.desktop->change([&](Script& script) { script = displays(count); });
    }
    return Fault{};
  });
}

TEST(GetIndex, ReturnsNotFoundForADisplayThatVanishesBetweenCalls) {
  const ScriptedSession session(displays(3));
  changeBetweenTheQuestions(session, 2);
  EXPECT_EQ(Display::GetIndex(102), kNotFound);
}

TEST(GetIndex, ReturnsThePositionWhenAnotherDisplayVanishes) {
  const ScriptedSession session(displays(3));
  changeBetweenTheQuestions(session, 2);
  EXPECT_EQ(Display::GetIndex(101), 1U);
}

TEST(GetIndex, ReturnsNotFoundForADisplayThatAppearsBetweenCalls) {
  const ScriptedSession session(displays(2));
  changeBetweenTheQuestions(session, 3);
  EXPECT_EQ(Display::GetIndex(102), kNotFound);
}

TEST(GetIndex, ReadsNoFurtherThanItsBuffer) {
  const ScriptedSession session(displays(3));
  faultOnce(Call::CGGetActiveDisplayList, 2, {.number = 1000000});
  EXPECT_EQ(Display::GetIndex(102), 2U);
  faultOnce(Call::CGGetActiveDisplayList, 2, {.number = 1000000});
  EXPECT_EQ(Display::GetIndex(999), kNotFound);
}

TEST(DisplayIDForWindow, TestsTheRectangleBelowTheWindow) {
  auto script = displays(0);
  script.arrangement.displays = {display(1, {0, 0, 100, 100}), display(2, {0, 100, 100, 100})};
  const ScriptedSession session(script);
  EXPECT_EQ(Display::DisplayIDForWindow(0, 0, 100, 100), 2U);
  EXPECT_EQ(Display::DisplayIDForWindow(0, -100, 100, 100), 1U);
}

TEST(DisplayIDForWindow, Returns0WithoutADisplay) {
  const ScriptedSession session(displays(2));
  EXPECT_EQ(Display::DisplayIDForWindow(5000, 5000, 10, 10), 0U);
}

TEST(GetScale, ReturnsTheBackingScale) {
  auto script = oneDisplay({0, 0, 1440, 900});
  script.arrangement.screens = {support::screen({0, 0, 1440, 900}, 2)};
  script.arrangement.main_screen = 0;
  const ScriptedSession session(script);
  EXPECT_EQ(Display::GetScale(1), 2.0);
  EXPECT_EQ(Display::GetScale(9), 2.0);
}

}  // namespace
