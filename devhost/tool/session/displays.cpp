#include "devhost/tool/session/displays.h"

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "devhost/tool/terminal/terminal.h"
#include "devhost/tool/terminal/waiting.h"

namespace devhost::tool {
namespace {

/// GetIndex of a display that is not active.
constexpr std::uint32_t kDisplayNotFound = 0xF4520FF3;

Display describePlace(const Plugin& plugin, std::uint32_t number) {
  Display display;
  display.number = number;
  const auto index = static_cast<std::uint32_t>(plugin.call("GetIndex", {number}).result.unsignedNumber());
  if (index != kDisplayNotFound) {
    display.index = index;
  }
  display.name = nameOf(plugin, number);
  const CallResult bounds = plugin.call("GetCGRect", {number});
  display.x = bounds["x"].real();
  display.y = bounds["y"].real();
  display.width = bounds["width"].real();
  display.height = bounds["height"].real();
  display.scale = plugin.call("GetScale", {number}).result.real();
  return display;
}

template <typename Describe>
std::vector<Display> describeAll(const Plugin& plugin, Describe describe) {
  Progress progress("displays");
  std::vector<Display> displays;
  for (const std::uint32_t number : activeDisplayNumbers()) {
    displays.push_back(describe(plugin, number));
    progress.step();
  }
  return displays;
}

}  // namespace

std::vector<std::uint32_t> activeDisplayNumbers() {
  const Waiting waiting("the displays");
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

std::string uuidOf(std::uint32_t number) {
  const CFUUIDRef uuid = CGDisplayCreateUUIDFromDisplayID(number);
  if (uuid == nullptr) {
    return {};
  }
  const CFUUIDBytes bytes = CFUUIDGetUUIDBytes(uuid);
  CFRelease(uuid);
  return {reinterpret_cast<const char*>(&bytes), sizeof bytes};
}

std::string nameOf(const Plugin& plugin, std::uint32_t number) {
  const Waiting waiting("the name of display " + std::to_string(number));
  return plugin.call("GetName", {number})["name"].text();
}

std::string profileOf(const Plugin& plugin, std::uint32_t number) {
  const Waiting waiting("the profile of display " + std::to_string(number));
  const Value profiles = plugin.call("GetAssociatedProfilePathsArray", {number}).result;
  return profiles.elements().empty() ? std::string() : plugin.call("GetProfilePath", {number})["path"].text();
}

bool isMain(const Display& display) { return display.index == 0U; }

std::vector<Display> describePlaces(const Plugin& plugin) { return describeAll(plugin, describePlace); }

std::vector<Display> describeDisplays(const Plugin& plugin) {
  return describeAll(plugin, [](const Plugin& plugin, std::uint32_t number) {
    Display display = describePlace(plugin, number);
    display.profile = profileOf(plugin, number);
    return display;
  });
}

Json placeToJson(const Display& display) {
  return {{"number", display.number},
          {"index", display.index ? Json(*display.index) : Json(nullptr)},
          {"name", display.name},
          {"bounds", {{"x", display.x}, {"y", display.y}, {"width", display.width}, {"height", display.height}}},
          {"scale", display.scale}};
}

}  // namespace devhost::tool
