// The scale settings of X11 desktops. Any thread may call.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "desktop/model/export.h"

namespace platform::desktop {

/// Larger settings are ignored as mistakes.
inline constexpr double kLargestScale = 16;

/// The integer setting "Gdk/WindowScalingFactor" in the contents of an XSETTINGS manager's property _XSETTINGS_SETTINGS
/// (freedesktop.org, XSETTINGS protocol 0.5, "Format of the _XSETTINGS_SETTINGS property"), in either byte order.
/// Nothing when it is missing, is not an integer from 1 to 16, or follows invalid bytes.
PLATFORM_API std::optional<int> windowScalingFactor(std::span<const std::uint8_t> settings);

/// The resource "Xft.dpi" in the text of the property RESOURCE_MANAGER, by the rules of X resources ("*dpi: 144"
/// counts). Directives, such as one to include a file, are ignored. Nothing when it is missing or not a positive
/// decimal number.
PLATFORM_API std::optional<double> xftDpi(std::string_view resources);

/// Pixels per point of all screens: the window scaling factor; else the resolution over 96, rounded to the nearest half
/// (a quarter is rounded up), at least 1; else 1.
PLATFORM_API double backingScale(std::optional<int> window_scaling_factor, std::optional<double> dpi);

}  // namespace platform::desktop
