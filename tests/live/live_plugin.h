// A host with a fresh plugin on the live desktop, and the results that xrandr predicts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "support/xorg_server.h"

namespace live {

/// Makes a live desktop that of the process. The destructor removes it.
class LiveSession {
 public:
  /// `display`: the value of DISPLAY.
  explicit LiveSession(const std::string& display);
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
};

/// The outputs that `xrandr --query` (with --verbose, for their identifiers) shows as on: the primary one first and at
/// the origin, the others in xrandr's order.
std::vector<ExpectedDisplay> expectedDisplays(support::XServer& server, double scale = 1);

/// The active displays' numbers from CoreGraphics.
std::vector<std::uint32_t> activeDisplays();

}  // namespace live
