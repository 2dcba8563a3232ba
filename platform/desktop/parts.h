// The parts of this library that need the libraries of Wayland, X, colord and lcms2. Each is a library of its own
// beside this one and is loaded at first use, so that a process which needs none of them does not wait for them. Any
// thread may call.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/icc/icc_gamut.h"
#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// Null without a compositor, and where only modern ones count also with one that is too old (wayland_displays.h).
using WaylandSource = std::function<std::shared_ptr<const Arrangement>(bool only_modern)>;

struct WaylandPart {
  /// A new connection's displays.
  WaylandSource (*displays)();
  /// askWayland() (diagnosis.h).
  WaylandReport (*ask)();
};

struct X11Part {
  /// A new connection's displays (x11_displays.h). The source gives null without a server.
  ArrangementSource (*displays)();
  /// askXServer() (diagnosis.h).
  XServerReport (*ask)();
};

/// See colord_devices.h.
struct ColordPart {
  void (*visit)(const ArrangementSource& displays, const DeviceProfileVisitor& visit);
  bool (*assign)(const ArrangementSource& displays, const Uuid& device, const std::string& profile_path);
  /// prepareColord() (colord_devices.h).
  void (*prepare)();
  /// askColord() (diagnosis.h).
  ColordReport (*ask)(const std::vector<Display>& displays);
};

struct GamutPart {
  /// colorSpaceOf() (icc_gamut.h).
  std::optional<ColorSpace> (*color_space)(const IccProfile& file);
};

/// When the library cannot be loaded, which is reported once on stderr: functions that find nothing.
PLATFORM_API const WaylandPart& waylandPart();
PLATFORM_API const X11Part& x11Part();
PLATFORM_API const ColordPart& colordPart();
PLATFORM_API const GamutPart& gamutPart();

}  // namespace platform::desktop
