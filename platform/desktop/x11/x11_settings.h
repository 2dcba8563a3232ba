// The scale settings of an X desktop: the XSETTINGS manager's, and the resource database. Any thread may call the
// functions; one thread at a time may use an X11Settings.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "desktop/model/export.h"
#include "desktop/x11/x11_connection.h"

namespace platform::desktop {

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

class X11Settings {
 public:
  explicit X11Settings(X11Connection& connection);

  /// Pixels per point; 1 without a setting. Also selects the events of changes, except those of the root windows, which
  /// X11Session selects.
  double readScale();

  /// Whether the result of readScale() may have changed.
  bool isChange(const xcb_generic_event_t& event) const;

 private:
  std::optional<int> readScalingFactor();

  X11Connection& connection_;
  xcb_atom_t selection_ = XCB_ATOM_NONE;  ///< the settings of the screen belong to this selection's owner
  xcb_atom_t settings_ = XCB_ATOM_NONE;
  xcb_atom_t manager_message_ = XCB_ATOM_NONE;
  xcb_window_t manager_ = XCB_WINDOW_NONE;
};

}  // namespace platform::desktop
