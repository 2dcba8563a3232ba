#include "desktop/wayland/wayland_output.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/edid_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::arrange;
using platform::desktop::fractionalScale;
using platform::desktop::Monitor;
using platform::desktop::monitorsOf;
using platform::desktop::WaylandOutput;

constexpr const char* kNoFolder = "/nowhere";

WaylandOutput output(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
  WaylandOutput output;
  output.id = 7;
  output.name = "DP-1";
  output.mode_width = width;
  output.mode_height = height;
  output.has_logical_area = true;
  output.logical_x = x;
  output.logical_y = y;
  output.logical_width = width;
  output.logical_height = height;
  return output;
}

// --- the scale

TEST(FractionalScale, IsExactForQuartersHoweverTheCompositorRounds) {
  const std::pair<int, int> modes[] = {{1920, 1080}, {1366, 768},  {2560, 1440}, {2560, 1600},
                                       {3840, 2160}, {2256, 1504}, {3440, 1440}, {1080, 1920}};
  for (const auto& [width, height] : modes) {
    for (int quarters = 4; quarters <= 16; ++quarters) {
      SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height) + " at " + std::to_string(quarters) + "/4");
      const double scale = quarters / 4.0;
      for (const auto round : {static_cast<double (*)(double)>(std::floor), static_cast<double (*)(double)>(std::round),
                               static_cast<double (*)(double)>(std::ceil)}) {
        EXPECT_EQ(fractionalScale(width, height, static_cast<int>(round(width / scale)),
                                  static_cast<int>(round(height / scale))),
                  scale);
      }
    }
  }
}

TEST(FractionalScale, IsTheRatioWhereBothSizesAreExact) {
  EXPECT_EQ(fractionalScale(1920, 1080, 1104, 621), 1920.0 / 1104);
}

TEST(FractionalScale, IsTheNearestTwentiethOr120thElse) {
  EXPECT_EQ(fractionalScale(1920, 1080, 1129, 635), 1.7);
  EXPECT_EQ(fractionalScale(2560, 1440, 2226, 1252), 1.15);
  EXPECT_EQ(fractionalScale(3840, 2160, 2826, 1590), 163 / 120.0);
}

TEST(FractionalScale, IsTheRatioOfTheWidthsForSizesOfAnotherShape) {
  EXPECT_EQ(fractionalScale(1000, 1000, 500, 100), 2);
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(fractionalScale(kMost, 1, 1, kMost), kMost);
  EXPECT_GT(fractionalScale(1, kMost, kMost, 1), 0);
}

// --- monitors

TEST(MonitorsOfOutputs, HaveTheAreaInPoints) {
  WaylandOutput turned = output(-1080, -300, 1080, 1920);
  turned.mode_width = 3840;
  turned.mode_height = 2160;
  turned.transform = 3;
  const auto monitors = monitorsOf({turned, output(0, 0, 1920, 1080)}, kNoFolder);
  ASSERT_EQ(monitors.size(), 2u);
  EXPECT_EQ(monitors[0].x, -1080);
  EXPECT_EQ(monitors[0].y, -300);
  EXPECT_EQ(monitors[0].width, 1080u);
  EXPECT_EQ(monitors[0].height, 1920u);
  EXPECT_EQ(monitors[0].backing_scale, 2);
  EXPECT_FALSE(monitors[0].primary);
  EXPECT_EQ(monitors[0].output, 7u);
  EXPECT_TRUE(monitors[1].primary) << "at the origin";
  EXPECT_EQ(monitors[1].backing_scale, 1);
}

TEST(MonitorsOfOutputs, DivideTheModeWithoutAnAreaInPoints) {
  WaylandOutput old = output(0, 0, 0, 0);
  old.has_logical_area = false;
  old.mode_width = 2160;
  old.mode_height = 3840;
  old.transform = 1;
  old.scale = 2;
  old.x = 100;
  old.y = -200;
  const auto monitors = monitorsOf({old}, kNoFolder);
  ASSERT_EQ(monitors.size(), 1u);
  EXPECT_EQ(monitors[0].x, 100);
  EXPECT_EQ(monitors[0].y, -200);
  EXPECT_EQ(monitors[0].width, 1920u);
  EXPECT_EQ(monitors[0].height, 1080u);
  EXPECT_EQ(monitors[0].backing_scale, 2);
}

TEST(MonitorsOfOutputs, LeaveOutImpossibleSizes) {
  constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
  for (const std::int32_t size : {0, -1, kLeast}) {
    WaylandOutput one = output(0, 0, 100, 100);
    one.mode_width = size;
    EXPECT_TRUE(monitorsOf({one}, kNoFolder).empty());
    one = output(0, 0, 100, 100);
    one.logical_height = size;
    EXPECT_TRUE(monitorsOf({one}, kNoFolder).empty());
    one = output(0, 0, 100, 100);
    one.has_logical_area = false;
    one.scale = size;
    EXPECT_EQ(monitorsOf({one}, kNoFolder).size(), 1u) << "a scale of 1";
  }
}

TEST(MonitorsOfOutputs, OfTheLargestNumbersCanBeArranged) {
  constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  const auto arrangement =
      arrange(monitorsOf({output(kMost, kMost, kMost, kMost), output(kLeast, kLeast, kMost, kMost)}, kNoFolder), 1);
  ASSERT_EQ(arrangement.displays.size(), 2u);
  EXPECT_NE(arrangement.displays[0].number, arrangement.displays[1].number);
  EXPECT_EQ(arrangement.displays[1].bounds.x, -4294967295.0);
}

TEST(MonitorsOfOutputs, HaveCleanNames) {
  WaylandOutput one = output(0, 0, 100, 100);
  one.name = "DP\xFF-\n1";
  one.make = "DEL";
  one.model = "\xC3\x28 model";
  const auto monitors = monitorsOf({one}, kNoFolder);
  ASSERT_EQ(monitors.size(), 1u);
  EXPECT_EQ(monitors[0].connector, "DP\xEF\xBF\xBD-1");
  EXPECT_EQ(monitors[0].described_vendor, 0x10ACu);
  EXPECT_EQ(monitors[0].described_name, "\xEF\xBF\xBD( model");
  one.name = "\xC3\xA9\xF4\xBA\xBA\xBA";  // beyond U+10FFFF
  EXPECT_EQ(monitorsOf({one}, "/nowhere")[0].connector, "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
  one.name = "\xC3\xA9";
  EXPECT_EQ(monitorsOf({one}, "/nowhere")[0].connector, "\xC3\xA9");
}

TEST(MonitorsOfOutputs, AreNamedByTheDescriptionWithoutAModel) {
  for (const char* const model : {"", "unknown", "Unknown", "(null)", "0x1234"}) {
    WaylandOutput one = output(0, 0, 100, 100);
    one.make = "Some Company";
    one.model = model;
    one.description = "A screen";
    EXPECT_EQ(monitorsOf({one}, kNoFolder).at(0).described_name, "A screen");
    EXPECT_EQ(monitorsOf({one}, kNoFolder).at(0).described_vendor, std::nullopt);
  }
}

TEST(MonitorsOfOutputs, WithoutNamesAreToldApart) {
  WaylandOutput first = output(0, 0, 100, 100);
  first.name.clear();
  WaylandOutput second = output(100, 0, 100, 100);
  second.name.clear();
  const auto arrangement = arrange(monitorsOf({first, second}, kNoFolder), 1);
  ASSERT_EQ(arrangement.displays.size(), 2u);
  EXPECT_EQ(arrangement.displays[0].connector, "");
  EXPECT_NE(arrangement.displays[0].uuid, arrangement.displays[1].uuid);
}

TEST(MonitorsOfOutputs, HaveTheEdidOfTheirConnector) {
  const support::TemporaryFolder folder;
  const auto edid = support::makeEdid();
  folder.write("card1-DP-1/edid", {reinterpret_cast<const char*>(edid.data()), edid.size()});
  const auto monitors = monitorsOf({output(0, 0, 100, 100)}, folder.path());
  ASSERT_EQ(monitors.size(), 1u);
  EXPECT_EQ(monitors[0].edid, edid);
  EXPECT_EQ(monitors[0].edid_path, folder.path("card1-DP-1/edid"));
}

}  // namespace
