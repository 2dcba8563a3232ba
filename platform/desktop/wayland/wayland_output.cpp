#include "desktop/wayland/wayland_output.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "desktop/model/connector.h"
#include "desktop/model/edid.h"
#include "desktop/model/utf8.h"

namespace platform::desktop {
namespace {

/// Whether so many pixels at this scale are so many points, rounded up or down.
bool fits(std::int32_t pixels, std::int32_t points, double scale) { return std::abs(pixels / scale - points) < 1; }

/// UTF-8 without control characters, since names are shown on one line. Of other bytes only ASCII is kept.
std::string cleanText(const std::string& bytes) {
  std::string text = isUtf8(bytes) ? bytes : utf8From("ASCII", bytes);
  std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  return text;
}

/// The packed manufacturer id of three capital letters; nothing for another make.
std::optional<std::uint16_t> vendorOf(std::string_view make) {
  const bool is_id =
      make.size() == 3 && std::all_of(make.begin(), make.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
  if (!is_id) {
    return std::nullopt;
  }
  return static_cast<std::uint16_t>((make[0] - '@') << 10 | (make[1] - '@') << 5 | (make[2] - '@'));
}

/// A compositor that cannot read a monitor's name fills in such words.
bool isPlaceholder(std::string_view text) {
  return text.empty() || text == "unknown" || text == "Unknown" || text == "(null)" || text.starts_with("0x");
}

struct Size {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

std::optional<Monitor> monitorOf(const WaylandOutput& output, std::size_t index, const std::string& connector_folder) {
  Size pixels{output.mode_width, output.mode_height};
  if (output.transform % 2 != 0) {
    std::swap(pixels.width, pixels.height);
  }
  if (pixels.width <= 0 || pixels.height <= 0) {
    return std::nullopt;
  }
  const std::int32_t whole_scale = std::max(output.scale, 1);
  Size points{pixels.width / whole_scale, pixels.height / whole_scale};
  if (output.has_logical_area) {
    points = {output.logical_width, output.logical_height};
  }
  if (points.width <= 0 || points.height <= 0) {
    return std::nullopt;
  }
  Monitor monitor;
  monitor.output = output.id;
  monitor.connector = cleanText(output.name);
  monitor.name = monitor.connector.empty() ? "output " + std::to_string(index) : monitor.connector;
  monitor.x = output.has_logical_area ? output.logical_x : output.x;
  monitor.y = output.has_logical_area ? output.logical_y : output.y;
  monitor.width = static_cast<std::uint32_t>(points.width);
  monitor.height = static_cast<std::uint32_t>(points.height);
  monitor.backing_scale =
      output.has_logical_area ? fractionalScale(pixels.width, pixels.height, points.width, points.height) : whole_scale;
  const std::string model = cleanText(output.model);
  auto edid = readConnectorEdid(connector_folder, monitor.connector, model);
  monitor.edid = std::move(edid.bytes);
  monitor.edid_path = std::move(edid.path);
  monitor.described_vendor = vendorOf(output.make);
  monitor.described_name = isPlaceholder(model) ? cleanText(output.description) : model;
  return monitor;
}

}  // namespace

double fractionalScale(std::int32_t pixel_width, std::int32_t pixel_height, std::int32_t point_width,
                       std::int32_t point_height) {
  const double ratio = static_cast<double>(pixel_width) / point_width;
  const auto nearest = [&](double parts) -> std::optional<double> {
    // The longer side is rounded less.
    const double longer = pixel_width >= pixel_height ? ratio : static_cast<double>(pixel_height) / point_height;
    const double scale = std::round(longer * parts) / parts;
    const bool fits_both =
        scale > 0 && fits(pixel_width, point_width, scale) && fits(pixel_height, point_height, scale);
    return fits_both ? std::optional(scale) : std::nullopt;
  };
  if (const auto quarter = nearest(4)) {
    return *quarter;
  }
  if (std::int64_t{pixel_width} * point_height == std::int64_t{pixel_height} * point_width) {
    return ratio;
  }
  if (const auto twentieth = nearest(20)) {
    return *twentieth;
  }
  return nearest(120).value_or(ratio);
}

std::vector<Monitor> monitorsOf(const std::vector<WaylandOutput>& outputs, const std::string& connector_folder) {
  std::vector<Monitor> monitors;
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (auto monitor = monitorOf(outputs[i], i + 1, connector_folder)) {
      monitors.push_back(std::move(*monitor));
    }
  }
  const auto main = std::find_if(monitors.begin(), monitors.end(),
                                 [](const Monitor& monitor) { return monitor.x == 0 && monitor.y == 0; });
  if (main != monitors.end()) {
    main->primary = true;
  }
  return monitors;
}

}  // namespace platform::desktop
