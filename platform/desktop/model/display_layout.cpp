#include "desktop/model/display_layout.h"

#include <algorithm>
#include <set>

#include "desktop/model/edid.h"
#include "desktop/model/uuid.h"

namespace platform::desktop {
namespace {

constexpr std::uint32_t kNumberWithoutOutput = 0x80000000;

/// In the server's units, 64 bits wide so that no monitor's edge can overflow.
struct ServerRect {
  std::int64_t x;
  std::int64_t y;
  std::int64_t width;
  std::int64_t height;
};

Rect toPoints(const ServerRect& rect, double scale) {
  return {static_cast<double>(rect.x) / scale, static_cast<double>(rect.y) / scale,
          static_cast<double>(rect.width) / scale, static_cast<double>(rect.height) / scale};
}

bool isActive(const Monitor& monitor) { return monitor.width != 0 && monitor.height != 0; }

/// The monitors that become displays, the main one first.
std::vector<const Monitor*> inDisplayOrder(const std::vector<Monitor>& monitors) {
  std::vector<const Monitor*> order;
  for (const Monitor& monitor : monitors) {
    if (isActive(monitor)) {
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
  display.uuid = monitor.output == 0 || monitor.connector.empty() ? virtualMonitorUuid(monitor.name)
                                                                  : outputUuid(monitor.edid, monitor.connector);
  display.vendor = monitor.described_vendor ? *monitor.described_vendor : kUnknownVendor;
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

DisplayService serviceFrom(const Edid& edid) {
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

/// Whether a display without an EDID cannot be taken for this one by its numbers and get its name.
bool hasOwnName(const Monitor& monitor, const std::vector<Monitor>& monitors) {
  return std::all_of(monitors.begin(), monitors.end(), [&](const Monitor& other) {
    return !isActive(other) || other.described_vendor != monitor.described_vendor ||
           other.described_name == monitor.described_name || decodeEdid(other.edid);
  });
}

std::optional<DisplayService> describeService(const Monitor& monitor, const std::vector<Monitor>& monitors) {
  if (const auto edid = decodeEdid(monitor.edid)) {
    return serviceFrom(*edid);
  }
  if ((!monitor.described_vendor && monitor.described_name.empty()) || !hasOwnName(monitor, monitors)) {
    return std::nullopt;
  }
  DisplayService service;
  service.vendor = monitor.described_vendor ? *monitor.described_vendor : kUnknownVendor;
  service.product = kUnknownModel;
  service.product_names.emplace();
  if (!monitor.described_name.empty()) {
    service.product_names->emplace_back(kProductNameLanguage, monitor.described_name);
  }
  return service;
}

}  // namespace

Arrangement arrange(const std::vector<Monitor>& monitors, double scale) {
  Arrangement arrangement;
  const std::vector<const Monitor*> order = inDisplayOrder(monitors);
  std::set<std::uint32_t> taken;
  const bool mixed = std::any_of(order.begin(), order.end(), [&](const Monitor* monitor) {
    return monitor->backing_scale != order.front()->backing_scale;
  });
  for (const Monitor* monitor : order) {
    const Monitor& main = *order.front();
    ServerRect rect{std::int64_t{monitor->x} - main.x, std::int64_t{monitor->y} - main.y, monitor->width,
                    monitor->height};
    Display display = describeDisplay(*monitor);
    display.number = chooseNumber(*monitor, taken);
    display.bounds = toPoints(rect, scale);
    arrangement.displays.push_back(std::move(display));

    if (!mixed) {
      rect.y = std::int64_t{main.height} - (rect.y + rect.height);  // from the upper edge to the lower one
    }
    arrangement.screens.push_back(
        {.frame = toPoints(rect, scale), .backing_scale = monitor->backing_scale.value_or(scale)});
  }
  if (!order.empty()) {
    arrangement.main_screen = 0;
  }
  for (const Monitor& monitor : monitors) {
    if (auto service = isActive(monitor) ? describeService(monitor, monitors) : std::nullopt) {
      arrangement.services.push_back(std::move(*service));
    }
  }
  return arrangement;
}

}  // namespace platform::desktop
