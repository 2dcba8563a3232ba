// A host with a fresh plugin on the live desktop, and the results that xrandr or swaymsg predicts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "support/wayland_session.h"
#include "support/xorg_server.h"

namespace live {

/// Makes a live desktop that of the process. The destructor removes it.
class LiveSession {
 public:
  /// `display`: the value of DISPLAY. `wayland`: the path of a compositor's socket, for WAYLAND_DISPLAY.
  explicit LiveSession(const std::string& display, const std::string& wayland = {});
  ~LiveSession();
  LiveSession(const LiveSession&) = delete;
  LiveSession& operator=(const LiveSession&) = delete;

  devhost::Host host;
  devhost::Plugin plugin;
};

/// A display as a host program sees it: points, origin at the upper left of the main display.
struct ExpectedDisplay {
  std::string output;
  std::uint32_t number = 0;  ///< the identifier that xrandr shows for the output
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  double scale = 1;  ///< pixels per point
};

/// The outputs that `xrandr --query` (with --verbose, for their identifiers) shows as on: the primary one first and at
/// the origin, the others in xrandr's order.
std::vector<ExpectedDisplay> expectedDisplays(support::XServer& server, double scale = 1);

/// The outputs that `swaymsg` shows as on, with the numbers that `wayland-info` shows: the one at the origin first, the
/// others in the order of their numbers, in which the compositor announces them.
std::vector<ExpectedDisplay> expectedDisplays(const support::SwaySession& session);

/// The active displays' numbers from CoreGraphics.
std::vector<std::uint32_t> activeDisplays();

/// Expects the results of single methods for a display.
void expectRect(const devhost::Plugin& plugin, const ExpectedDisplay& display);
void expectCGRect(const devhost::Plugin& plugin, const ExpectedDisplay& display);

/// Expects these displays, in their order, from every geometry method.
void expectGeometry(const devhost::Plugin& plugin, const std::vector<ExpectedDisplay>& displays);

}  // namespace live
