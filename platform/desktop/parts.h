// The parts of this library that need the libraries of X, colord and lcms2. Each is a library of its own beside this
// one and is loaded at first use, so that a process which needs none of them does not wait for them. Any thread may
// call.
#pragma once

#include <string>
#include <vector>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/icc/icc_gamut.h"
#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

struct X11Part {
  /// A new connection's displays (x11_displays.h).
  ArrangementSource (*displays)();
  XServerReport (*ask)();
};

/// See colord_devices.h.
struct ColordPart {
  void (*visit)(const ArrangementSource& displays, const DeviceProfileVisitor& visit);
  bool (*assign)(const ArrangementSource& displays, const Uuid& device, const std::string& profile_path);
  ColordReport (*ask)(const std::vector<Display>& displays);
};

struct GamutPart {
  std::optional<ColorSpace> (*color_space)(const IccProfile& file);
};

/// Null when the library cannot be loaded, which is reported once on stderr.
const X11Part* x11Part();
const ColordPart* colordPart();
const GamutPart* gamutPart();

}  // namespace platform::desktop
