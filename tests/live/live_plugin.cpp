#include "live/live_plugin.h"

#include <CoreGraphics/CoreGraphics.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "desktop/current.h"
#include "support/fresh_plugin.h"

namespace live {
namespace {

/// Sets the environment before the load, which reads it.
devhost::Plugin loadOnDisplay(devhost::Host& host, const std::string& display, const std::string& wayland) {
  unsetenv("OSTREVIN_DESKTOP");
  setenv("DISPLAY", display.c_str(), 1);
  setenv("WAYLAND_DISPLAY", wayland.c_str(), 1);
  platform::desktop::setCurrent(nullptr);
  return support::loadFreshPlugin(host);
}

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

/// Small windows all over the desktop and a little beyond it, and some that lie on several displays. The method looks
/// at the rectangle below the window.
void expectDisplaysUnderWindows(const devhost::Plugin& plugin, const std::vector<ExpectedDisplay>& displays) {
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

}  // namespace

LiveSession::LiveSession(const std::string& display, const std::string& wayland)
    : plugin(loadOnDisplay(host, display, wayland)) {}

LiveSession::~LiveSession() { platform::desktop::setCurrent(nullptr); }

std::vector<ExpectedDisplay> expectedDisplays(support::XServer& server, double scale) {
  auto outputs = server.outputs();
  std::erase_if(outputs, [](const auto& output) { return !output.area; });
  std::stable_partition(outputs.begin(), outputs.end(), [](const auto& output) { return output.primary; });
  std::vector<ExpectedDisplay> displays;
  for (const auto& output : outputs) {
    const auto& main = *outputs.front().area;
    const auto& area = *output.area;
    displays.push_back({output.name, output.id, (area.x - main.x) / scale, (area.y - main.y) / scale,
                        area.width / scale, area.height / scale, scale});
  }
  return displays;
}

std::vector<ExpectedDisplay> expectedDisplays(const support::SwaySession& session) {
  auto numbers = session.numbers();
  std::vector<ExpectedDisplay> displays;
  for (const support::SwayOutput& output : session.outputs()) {
    if (output.active) {
      displays.push_back({output.name, numbers.at(output.name), 1.0 * output.x, 1.0 * output.y, 1.0 * output.width,
                          1.0 * output.height, output.scale});
    }
  }
  std::sort(displays.begin(), displays.end(), [](const auto& left, const auto& right) {
    return std::pair(left.x != 0 || left.y != 0, left.number) < std::pair(right.x != 0 || right.y != 0, right.number);
  });
  for (std::size_t i = displays.size(); i-- > 0;) {
    displays[i].x -= displays.front().x;
    displays[i].y -= displays.front().y;
  }
  return displays;
}

std::vector<std::uint32_t> activeDisplays() {
  std::vector<std::uint32_t> numbers(256);
  std::uint32_t count = 0;
  CGGetActiveDisplayList(static_cast<std::uint32_t>(numbers.size()), numbers.data(), &count);
  numbers.resize(count);
  return numbers;
}

void expectRect(const devhost::Plugin& plugin, const ExpectedDisplay& display) {
  const auto rect = plugin.call("GetRect", {display.number});
  EXPECT_EQ(rect["left"].integer(), truncated(display.x));
  EXPECT_EQ(rect["top"].integer(), truncated(display.y));
  EXPECT_EQ(rect["right"].integer(), truncated(display.x + display.width));
  EXPECT_EQ(rect["bottom"].integer(), truncated(display.y + display.height));
}

void expectCGRect(const devhost::Plugin& plugin, const ExpectedDisplay& display) {
  const auto rect = plugin.call("GetCGRect", {display.number});
  EXPECT_EQ(rect["x"].real(), display.x);
  EXPECT_EQ(rect["y"].real(), display.y);
  EXPECT_EQ(rect["width"].real(), display.width);
  EXPECT_EQ(rect["height"].real(), display.height);
}

void expectGeometry(const devhost::Plugin& plugin, const std::vector<ExpectedDisplay>& displays) {
  std::vector<std::uint32_t> numbers;
  for (std::size_t i = 0; i < displays.size(); ++i) {
    SCOPED_TRACE(displays[i].output);
    numbers.push_back(displays[i].number);
    EXPECT_EQ(plugin.call("GetIndex", {displays[i].number}).result.unsignedNumber(), i);
    EXPECT_EQ(plugin.call("GetScale", {displays[i].number}).result.real(), displays[i].scale);
    expectRect(plugin, displays[i]);
    expectCGRect(plugin, displays[i]);
  }
  EXPECT_EQ(activeDisplays(), numbers);
  expectDisplaysUnderWindows(plugin, displays);
}

}  // namespace live
