// All readings of one connection to an X server. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/model/display_layout.h"
#include "desktop/x11/x11_connection.h"
#include "desktop/x11/x11_monitors.h"
#include "desktop/x11/x11_settings.h"

namespace platform::desktop {

struct X11Reading {
  double scale = 1;               ///< pixels per point
  std::vector<Monitor> monitors;  ///< in the server's order
};

class X11Session {
 public:
  /// Waits for the server without a limit. Null when there is none.
  static std::unique_ptr<X11Session> open(const std::string& display, std::uint32_t newest_randr_minor);

  /// Waits for the server without a limit. Nothing when the connection is lost.
  std::optional<X11Reading> read();

  /// The version 1.x of RandR in use; 0 without RandR 1.2, and then there are no monitors.
  std::uint32_t randrMinor() const { return monitors_.randrMinor(); }

  /// Whether the server is Xwayland, which passes no EDIDs: those come from Linux's connectors, by the outputs'
  /// names, or for the only output, the only one.
  bool isXwayland() const { return is_xwayland_; }

  /// Whether the result of read() may have changed since. Looks only at events that have arrived: makes no request and
  /// does not wait.
  bool hasChanged();

  bool isLost() const { return connection_->isLost(); }

 private:
  X11Session(std::unique_ptr<X11Connection> connection, std::uint32_t newest_randr_minor);
  void selectRootEvents();
  static void readConnectorEdids(std::vector<Monitor>& monitors);
  bool isChange(const xcb_generic_event_t& event) const;

  std::unique_ptr<X11Connection> connection_;
  X11Monitors monitors_;
  X11Settings settings_;
  bool is_xwayland_ = false;
  bool changed_ = true;  ///< before the first reading, and after one during which something changed
};

}  // namespace platform::desktop
