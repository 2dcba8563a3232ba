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
  /// Selects the events of changes. `newest_minor` is the newest version 1.x to use.
  X11Monitors(X11Connection& connection, std::uint32_t newest_minor);

  /// The active monitors, in the server's order: those of RandR 1.5, or the outputs with a CRTC on an older server.
  /// None without RandR 1.2. Nothing when something changes meanwhile, or when the connection is lost.
  std::optional<std::vector<Monitor>> read();

  /// The version 1.x of RandR in use; 0 without RandR 1.2.
  std::uint32_t randrMinor() const { return minor_; }

  /// Whether the result of read() may have changed.
  bool isChange(const xcb_generic_event_t& event) const;

 private:
  bool has(std::uint32_t minor) const { return minor_ >= minor; }
  void selectEvents();
  std::optional<std::vector<Monitor>> readMonitors();
  std::optional<std::vector<Monitor>> readOutputs();
  std::optional<std::vector<xcb_randr_output_t>> listOutputs();
  xcb_randr_output_t primaryOutput();
  bool nameMonitors(std::vector<Monitor>& monitors);
  /// Fills in the names of the monitors' outputs; returns each output's CRTC.
  std::optional<std::vector<xcb_randr_crtc_t>> describeOutputs(std::vector<Monitor>& monitors);
  void readEdids(std::vector<Monitor>& monitors);
  bool placeOutputs(std::vector<Monitor>& outputs, const std::vector<xcb_randr_crtc_t>& crtcs);

  X11Connection& connection_;
  std::uint32_t minor_ = 0;  ///< of version 1; 0 without RandR 1.2
  std::uint8_t first_event_ = 0;
  xcb_atom_t edid_atom_ = XCB_ATOM_NONE;
  std::map<xcb_atom_t, std::string> names_;  ///< an atom never changes its name
};

}  // namespace platform::desktop
