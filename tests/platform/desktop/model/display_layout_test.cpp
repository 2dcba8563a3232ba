#include "desktop/model/display_layout.h"

#include <gtest/gtest.h>

#include <set>

#include "desktop/model/uuid.h"
#include "support/edid_maker.h"

namespace {

using platform::desktop::arrange;
using platform::desktop::Monitor;
using platform::desktop::Rect;
using support::makeEdid;

Monitor monitorAt(std::uint32_t output, int x, int y, unsigned width, unsigned height, bool primary = false) {
  const std::string name = "DP-" + std::to_string(output);
  return {.name = name,
          .name_atom = 100 + output,
          .output = output,
          .connector = name,
          .edid = {},
          .x = x,
          .y = y,
          .width = width,
          .height = height,
          .primary = primary};
}

TEST(Arrange, ReturnsNothingForNoMonitors) {
  const auto arrangement = arrange({}, 1);
  EXPECT_TRUE(arrangement.displays.empty());
  EXPECT_TRUE(arrangement.screens.empty());
  EXPECT_EQ(arrangement.main_screen, std::nullopt);
}

TEST(Arrange, PutsThePrimaryMonitorFirstAndAtTheOrigin) {
  const auto arrangement = arrange(
      {monitorAt(1, 0, 0, 1440, 900), monitorAt(2, 3000, 100, 800, 600), monitorAt(3, 1440, 200, 1920, 1080, true)}, 1);
  ASSERT_EQ(arrangement.displays.size(), 3u);
  EXPECT_EQ(arrangement.displays[0].number, 3u);
  EXPECT_EQ(arrangement.displays[0].bounds, (Rect{0, 0, 1920, 1080}));
  EXPECT_EQ(arrangement.displays[1].number, 1u);
  EXPECT_EQ(arrangement.displays[1].bounds, (Rect{-1440, -200, 1440, 900}));
  EXPECT_EQ(arrangement.displays[2].number, 2u);
  EXPECT_EQ(arrangement.displays[2].bounds, (Rect{1560, -100, 800, 600}));
}

TEST(Arrange, MeasuresFramesUpwardsFromTheMainScreensLowerEdge) {
  const auto arrangement = arrange({monitorAt(1, 0, 0, 1920, 1080), monitorAt(2, 1920, 0, 1280, 1024),
                                    monitorAt(3, 0, 1080, 800, 600), monitorAt(4, 1920, 1080, 640, 480)},
                                   1);
  ASSERT_EQ(arrangement.screens.size(), 4u);
  EXPECT_EQ(arrangement.main_screen, 0u);
  EXPECT_EQ(arrangement.screens[0].frame, (Rect{0, 0, 1920, 1080}));
  EXPECT_EQ(arrangement.screens[1].frame, (Rect{1920, 56, 1280, 1024}));
  EXPECT_EQ(arrangement.screens[2].frame, (Rect{0, -600, 800, 600}));
  EXPECT_EQ(arrangement.screens[3].frame, (Rect{1920, -480, 640, 480}));
}

TEST(Arrange, ScalesPixelsToPoints) {
  const auto arrangement =
      arrange({monitorAt(1, 3000, 2000, 2880, 1800, true), monitorAt(2, 119, 2001, 2881, 1801)}, 2);
  EXPECT_EQ(arrangement.displays[0].bounds, (Rect{0, 0, 1440, 900}));
  EXPECT_EQ(arrangement.displays[1].bounds, (Rect{-1440.5, 0.5, 1440.5, 900.5}));
  EXPECT_EQ(arrangement.screens[1].frame, (Rect{-1440.5, -1, 1440.5, 900.5}));
  EXPECT_EQ(arrangement.screens[0].backing_scale, 2);
  EXPECT_EQ(arrangement.screens[1].backing_scale, 2);
}

TEST(Arrange, SkipsMonitorsWithoutArea) {
  Monitor flat = monitorAt(1, 0, 0, 1024, 0, true);
  flat.edid = makeEdid();
  const auto arrangement = arrange({flat, monitorAt(2, 50, 60, 800, 600)}, 1);
  ASSERT_EQ(arrangement.displays.size(), 1u);
  EXPECT_EQ(arrangement.displays[0].bounds, (Rect{0, 0, 800, 600}));
  EXPECT_TRUE(arrangement.services.empty());
}

TEST(Arrange, AcceptsTheLargestCoordinates) {
  const auto arrangement = arrange({monitorAt(1, INT32_MIN, INT32_MIN, UINT32_MAX, UINT32_MAX),
                                    monitorAt(2, INT32_MAX, INT32_MAX, UINT32_MAX, UINT32_MAX)},
                                   1);
  EXPECT_EQ(arrangement.displays[1].bounds, (Rect{4294967295.0, 4294967295.0, 4294967295.0, 4294967295.0}));
}

TEST(Arrange, NumbersDisplaysByTheirOutputs) {
  const auto before = arrange({monitorAt(7, 0, 0, 640, 480), monitorAt(9, 640, 0, 640, 480)}, 1);
  const auto after = arrange({monitorAt(3, 0, 0, 10, 10), monitorAt(9, 5, 5, 1, 1, true), monitorAt(7, 9, 9, 2, 2)}, 1);
  EXPECT_EQ(before.displays[0].number, 7u);
  EXPECT_EQ(before.displays[1].number, 9u);
  EXPECT_EQ(after.displays[0].number, 9u);
  EXPECT_EQ(after.displays[2].number, 7u);
}

TEST(Arrange, NumbersEveryDisplayDifferentlyAndNever0) {
  std::vector<Monitor> monitors;
  for (int i = 0; i < 8; ++i) {
    monitors.push_back(monitorAt(i < 4 ? 0 : 5, i * 10, 0, 10, 10));
    monitors.back().name_atom = static_cast<std::uint32_t>(i / 2);
  }
  std::set<std::uint32_t> numbers;
  for (const auto& display : arrange(monitors, 1).displays) {
    EXPECT_NE(display.number, 0u);
    EXPECT_TRUE(numbers.insert(display.number).second);
  }
  EXPECT_EQ(numbers.size(), 8u);
}

TEST(Arrange, NumbersMonitorsWithoutOutputsByTheirNames) {
  Monitor monitor = monitorAt(0, 0, 0, 10, 10);
  monitor.name_atom = 431;
  EXPECT_EQ(arrange({monitor}, 1).displays[0].number, 0x80000000u + 431);
}

TEST(Arrange, IdentifiesDisplaysByOutputOrName) {
  Monitor with_output = monitorAt(1, 0, 0, 10, 10);
  with_output.edid = makeEdid();
  Monitor without_output = monitorAt(0, 10, 0, 10, 10);
  const auto arrangement = arrange({with_output, without_output}, 1);
  EXPECT_EQ(arrangement.displays[0].uuid, platform::desktop::outputUuid(makeEdid(), "DP-1"));
  EXPECT_EQ(arrangement.displays[1].uuid, platform::desktop::virtualMonitorUuid("DP-0"));
}

TEST(Arrange, GivesServicesTheNumbersOfTheirDisplays) {
  Monitor monitor = monitorAt(1, 0, 0, 10, 10);
  monitor.edid = makeEdid({.vendor = "APP", .product = 5, .serial = 6, .name = "Name"});
  const auto arrangement = arrange({monitor, monitorAt(2, 10, 0, 10, 10)}, 1);
  ASSERT_EQ(arrangement.services.size(), 1u);
  EXPECT_EQ(arrangement.services[0].vendor, arrangement.displays[0].vendor);
  EXPECT_EQ(arrangement.services[0].product, arrangement.displays[0].model);
  EXPECT_EQ(arrangement.services[0].serial, arrangement.displays[0].serial);
  ASSERT_TRUE(arrangement.services[0].product_names);
  ASSERT_EQ(arrangement.services[0].product_names->size(), 1u);
  EXPECT_EQ(arrangement.services[0].product_names->front().second, "Name");
}

}  // namespace
