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

  /// Pixels per point, 1 when nobody says. Also has the server report changes of what was read; those of the root
  /// windows it reports when their properties and structure are selected for (see X11Session).
  double readScale();

  /// Whether the event says that what readScale() answers may have changed.
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
