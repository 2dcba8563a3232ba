#include "devhost/tool/displays.h"

#include <CoreGraphics/CoreGraphics.h>

namespace devhost::tool {
namespace {

/// GetIndex of a display that is not active.
constexpr std::uint32_t kDisplayNotFound = 0xF4520FF3;

}  // namespace

std::vector<std::uint32_t> activeDisplayNumbers() {
  std::uint32_t count = 0;
  if (CGGetActiveDisplayList(0, nullptr, &count) != kCGErrorSuccess || count == 0) {
    return {};
  }
  std::vector<std::uint32_t> numbers(count);
  if (CGGetActiveDisplayList(count, numbers.data(), &count) != kCGErrorSuccess) {
    return {};
  }
  if (count < numbers.size()) {
    numbers.resize(count);
  }
  return numbers;
}

Display describeDisplay(const Plugin& plugin, std::uint32_t number) {
  Display display;
  display.number = number;
  const auto index = static_cast<std::uint32_t>(plugin.call("GetIndex", {number}).result.unsignedNumber());
  if (index != kDisplayNotFound) {
    display.index = index;
  }
  display.name = plugin.call("GetName", {number})["name"].text();
  const CallResult bounds = plugin.call("GetCGRect", {number});
  display.x = bounds["x"].real();
  display.y = bounds["y"].real();
  display.width = bounds["width"].real();
  display.height = bounds["height"].real();
  display.scale = plugin.call("GetScale", {number}).result.real();
  display.profile = plugin.call("GetProfilePath", {number})["path"].text();
  return display;
}

}  // namespace devhost::tool
