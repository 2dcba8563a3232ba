#include "desktop/model/display_layout.h"

#include <algorithm>
#include <set>

#include "desktop/model/edid.h"
#include "desktop/model/uuid.h"

namespace platform::desktop {
namespace {

constexpr std::uint32_t kNumberWithoutOutput = 0x80000000;

/// Coordinates in pixels, 64 bits wide so that no monitor's edge can overflow.
struct PixelRect {
  std::int64_t x;
  std::int64_t y;
  std::int64_t width;
  std::int64_t height;
};

Rect toPoints(const PixelRect& pixels, double scale) {
  return {static_cast<double>(pixels.x) / scale, static_cast<double>(pixels.y) / scale,
          static_cast<double>(pixels.width) / scale, static_cast<double>(pixels.height) / scale};
}

/// The monitors that become displays, the main one first.
std::vector<const Monitor*> inDisplayOrder(const std::vector<Monitor>& monitors) {
  std::vector<const Monitor*> order;
  for (const Monitor& monitor : monitors) {
    if (monitor.width != 0 && monitor.height != 0) {
      order.push_back(&monitor);
    }
  }
  const auto primary =
      std::find_if(order.begin(), order.end(), [](const Monitor* monitor) { return monitor->primary; });
  if (primary != order.end()) {
    std::rotate(order.begin(), primary, primary + 1);
  }
  return order;
}

std::uint32_t chooseNumber(const Monitor& monitor, std::set<std::uint32_t>& taken) {
  std::uint32_t number = monitor.output;
  if (number == 0 || taken.count(number) != 0) {
    number = kNumberWithoutOutput | monitor.name_atom;
  }
  while (number == 0 || taken.count(number) != 0) {
    ++number;
  }
  taken.insert(number);
  return number;
}

Display describeDisplay(const Monitor& monitor) {
  Display display;
  display.connector = monitor.connector;
  display.uuid = monitor.output != 0 ? outputUuid(monitor.edid, monitor.connector) : virtualMonitorUuid(monitor.name);
  display.vendor = kUnknownVendor;
  display.model = kUnknownModel;
  display.serial = kUnknownSerial;
  if (const auto edid = decodeEdid(monitor.edid)) {
    display.vendor = edid->vendor;
    display.model = edid->product;
    display.serial = edid->serial;
    display.edid = monitor.edid;
  }
  return display;
}

DisplayService describeService(const Edid& edid) {
  DisplayService service;
  service.vendor = edid.vendor;
  service.product = edid.product;
  if (edid.serial != 0) {
    service.serial = edid.serial;
  }
  service.product_names.emplace();
  if (edid.name) {
    service.product_names->emplace_back(kProductNameLanguage, *edid.name);
  }
  return service;
}

}  // namespace

Arrangement arrange(const std::vector<Monitor>& monitors, double scale) {
  Arrangement arrangement;
  const std::vector<const Monitor*> order = inDisplayOrder(monitors);
  std::set<std::uint32_t> taken;
  for (const Monitor* monitor : order) {
    const Monitor& main = *order.front();
    PixelRect pixels{std::int64_t{monitor->x} - main.x, std::int64_t{monitor->y} - main.y, monitor->width,
                     monitor->height};
    Display display = describeDisplay(*monitor);
    display.number = chooseNumber(*monitor, taken);
    display.bounds = toPoints(pixels, scale);
    arrangement.displays.push_back(std::move(display));

    pixels.y = std::int64_t{main.height} - (pixels.y + pixels.height);  // from the upper edge to the lower one
    arrangement.screens.push_back({.frame = toPoints(pixels, scale), .backing_scale = scale});
  }
  if (!order.empty()) {
    arrangement.main_screen = 0;
  }
  for (const Monitor& monitor : monitors) {
    const bool active = monitor.width != 0 && monitor.height != 0;
    if (const auto edid = active ? decodeEdid(monitor.edid) : std::nullopt) {
      arrangement.services.push_back(describeService(*edid));
    }
  }
  return arrangement;
}

}  // namespace platform::desktop
