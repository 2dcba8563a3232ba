#include "live/agreement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <set>
#include <thread>

#include "desktop/current.h"

namespace live {

using platform::desktop::Arrangement;
using platform::desktop::Desktop;
using platform::desktop::Rect;
using support::XrandrMonitor;

namespace {

/// The lower left corner of the main screen is the frame's origin.
Rect frameOf(const Rect& bounds, double main_height) {
  return {bounds.x, main_height - bounds.y - bounds.height, bounds.width, bounds.height};
}

std::vector<XrandrMonitor> primaryFirst(std::vector<XrandrMonitor> monitors) {
  std::stable_partition(monitors.begin(), monitors.end(), [](const XrandrMonitor& monitor) { return monitor.primary; });
  return monitors;
}

}  // namespace

std::shared_ptr<Desktop> liveDesktopOf(const support::XServer& server) {
  setenv("DISPLAY", server.display().c_str(), 1);
  return platform::desktop::makeLiveDesktop();
}

void expectAgreement(support::XServer& server, const Arrangement& arrangement, double scale) {
  const auto monitors = primaryFirst(server.monitors());
  std::map<std::string, std::uint32_t> ids;
  for (const auto& output : server.outputs()) {
    ids[output.name] = output.id;
  }
  ASSERT_EQ(arrangement.displays.size(), monitors.size());
  ASSERT_EQ(arrangement.screens.size(), monitors.size());
  ASSERT_FALSE(monitors.empty());
  EXPECT_EQ(arrangement.main_screen, 0u);
  const auto main = monitors.front().area;
  std::set<std::uint32_t> numbers;
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    const auto& [name, primary, area, outputs] = monitors[i];
    SCOPED_TRACE(name);
    const Rect bounds{(area.x - main.x) / scale, (area.y - main.y) / scale, area.width / scale, area.height / scale};
    EXPECT_EQ(arrangement.displays[i].bounds, bounds);
    EXPECT_EQ(arrangement.screens[i].frame, frameOf(bounds, main.height / scale));
    EXPECT_EQ(arrangement.screens[i].backing_scale, scale);
    EXPECT_TRUE(arrangement.displays[i].uuid);
    EXPECT_NE(arrangement.displays[i].number, 0u);
    EXPECT_TRUE(numbers.insert(arrangement.displays[i].number).second) << "numbered twice";
    if (outputs.empty()) {
      EXPECT_EQ(arrangement.displays[i].connector, "");
    } else {
      EXPECT_EQ(arrangement.displays[i].connector, outputs.front());
      EXPECT_EQ(arrangement.displays[i].number, ids.at(outputs.front()));
    }
  }
}

std::shared_ptr<const Arrangement> waitForDisplays(Desktop& desktop) {
  constexpr std::chrono::seconds kLimit(30);
  constexpr std::chrono::milliseconds kInterval(5);
  const auto deadline = std::chrono::steady_clock::now() + kLimit;
  auto arrangement = desktop.arrangement();
  while (arrangement->displays.empty() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kInterval);
    arrangement = desktop.arrangement();
  }
  return arrangement;
}

}  // namespace live
