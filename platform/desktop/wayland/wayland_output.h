// What a compositor says about one output, and the monitor that it makes. Pure functions; any thread may call.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "desktop/model/display_layout.h"
#include "desktop/model/export.h"

namespace platform::desktop {

struct WaylandOutput {
  std::uint32_t id = 0;     ///< the global's name in the registry
  std::string name;         ///< such as "DP-1"; empty before version 4 of wl_output and 2 of zxdg_output_v1
  std::string description;  ///< for people
  std::string make;
  std::string model;
  std::int32_t mode_width = 0;  ///< in pixels, before any rotation
  std::int32_t mode_height = 0;
  std::int32_t transform = 0;  ///< of enum wl_output.transform: the odd ones rotate by a quarter or three
  std::int32_t scale = 1;      ///< rounded up to a whole number
  std::int32_t x = 0;          ///< in points, as wl_output gives them
  std::int32_t y = 0;
  bool has_logical_area = false;  ///< whether zxdg_output_v1 has given the four members below
  std::int32_t logical_x = 0;     ///< in points
  std::int32_t logical_y = 0;
  std::int32_t logical_width = 0;
  std::int32_t logical_height = 0;
};

/// Pixels per point of an output with this size in pixels and in whole points, which the compositor has rounded up or
/// down: the scale that fits both sizes, of the nearest quarter, the exact ratio of both, the nearest twentieth and the
/// nearest 120th (wp_fractional_scale_v1's unit); else the ratio of the widths. All arguments are positive.
PLATFORM_API double fractionalScale(std::int32_t pixel_width, std::int32_t pixel_height, std::int32_t point_width,
                                    std::int32_t point_height);

/// The outputs as monitors in points, in their order. The one at the origin is the primary one. Text that is not UTF-8
/// gets U+FFFD in its place. EDIDs come from `connector_folder`; a three-letter make is the vendor of a monitor without
/// one, and its model, else its description is its name. An output without a mode or with a negative size is left out.
PLATFORM_API std::vector<Monitor> monitorsOf(const std::vector<WaylandOutput>& outputs,
                                             const std::string& connector_folder);

}  // namespace platform::desktop
