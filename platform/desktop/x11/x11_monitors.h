// The monitors of an X screen, read with the RandR extension. One thread at a time.
#pragma once

#include <xcb/randr.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "desktop/model/display_layout.h"
#include "desktop/x11/x11_connection.h"

namespace platform::desktop {

class X11Monitors {
 public:
  /// Asks the server to report changes from now on. `newest_minor` is the newest version 1.x to use.
  X11Monitors(X11Connection& connection, std::uint32_t newest_minor);

  /// The active monitors, in the server's order: the monitors of RandR 1.5, or the outputs with a CRTC on a server that
  /// does not have them. None on a server without RandR 1.2. Nothing when something changed while it was being read, or
  /// when the connection is lost.
  std::optional<std::vector<Monitor>> read();

  /// Which version 1.x of RandR is used; 0 when there is none that serves.
  std::uint32_t randrMinor() const { return minor_; }

  /// Whether the event says that what read() answers may have changed.
  bool isChange(const xcb_generic_event_t& event) const;

 private:
  bool has(std::uint32_t minor) const { return minor_ >= minor; }
  void selectEvents();
  std::optional<std::vector<Monitor>> readMonitors();
  std::optional<std::vector<Monitor>> readOutputs();
  std::optional<std::vector<xcb_randr_output_t>> listOutputs();
  xcb_randr_output_t primaryOutput();
  bool nameMonitors(std::vector<Monitor>& monitors);
  /// Fills in what the monitors' outputs say about themselves; answers each output's CRTC.
  std::optional<std::vector<xcb_randr_crtc_t>> describeOutputs(std::vector<Monitor>& monitors);
  void readEdids(std::vector<Monitor>& monitors);
  bool placeOutputs(std::vector<Monitor>& outputs, const std::vector<xcb_randr_crtc_t>& crtcs);

  X11Connection& connection_;
  std::uint32_t minor_ = 0;  ///< of version 1; 0 when there is no RandR that serves
  std::uint8_t first_event_ = 0;
  xcb_atom_t edid_atom_ = XCB_ATOM_NONE;
  std::map<xcb_atom_t, std::string> names_;  ///< an atom never changes its name
};

}  // namespace platform::desktop
