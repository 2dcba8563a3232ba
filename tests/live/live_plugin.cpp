#include "live/live_plugin.h"

#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cstdlib>

#include "desktop/current.h"
#include "support/fresh_plugin.h"

namespace live {
namespace {

/// Sets the environment before the load, which reads it.
devhost::Plugin loadOnDisplay(devhost::Host& host, const std::string& display) {
  unsetenv("OSTREVIN_DESKTOP");
  setenv("DISPLAY", display.c_str(), 1);
  platform::desktop::setCurrent(nullptr);
  return support::loadFreshPlugin(host);
}

}  // namespace

LiveSession::LiveSession(const std::string& display) : plugin(loadOnDisplay(host, display)) {}

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
                        area.width / scale, area.height / scale});
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

}  // namespace live
