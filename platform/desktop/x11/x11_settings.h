// The scale settings of an X desktop: the XSETTINGS manager's, and the resource database. One thread at a time.
#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <string>

#include "desktop/x11/x11_connection.h"

namespace platform::desktop {

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
