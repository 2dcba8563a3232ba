// From monitors in the pixels of an X screen to displays, screens and services as the frameworks answer them. Any
// thread may call.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// An active monitor. Its rectangle is in pixels, with the origin at the upper left of the X screen, y growing
/// downwards, after any rotation.
struct Monitor {
  std::string name;  ///< unique on the X screen
  std::uint32_t name_atom = 0;
  std::uint32_t output = 0;        ///< the id of the monitor's first output, or 0 when it has none
  std::string connector;           ///< that output's name
  std::vector<std::uint8_t> edid;  ///< what that output says; not checked
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool primary = false;
};

/// What a display without a valid EDID answers for vendor, model and serial: the values that CoreGraphics documents for
/// a display that it cannot identify (kDisplayVendorIDUnknown, kDisplayProductIDGeneric, 0).
inline constexpr std::uint32_t kUnknownVendor = 0x756E6B6E;
inline constexpr std::uint32_t kUnknownModel = 0x717;
inline constexpr std::uint32_t kUnknownSerial = 0;

/// The language code under which a monitor's own name is listed. An EDID does not say which language it is in.
inline constexpr const char* kProductNameLanguage = "en_US";

/// Arranges the monitors, given in the X server's order, `scale` pixels to the point.
///
/// - Displays and screens are in the server's order, but the first primary monitor comes before all others and is the
///   main display and main screen; without a primary one the first is. A monitor without an area is left out.
/// - All coordinates are relative to the main display: where it does not lie at the X screen's origin, every other
///   display's bounds differ from the server's offsets by its position.
/// - A display's number is its output's id, which stays the same while the output exists, whatever else comes and goes.
///   A monitor without an output, and one whose output another monitor has already, gets 0x80000000 plus its name's
///   atom (X ids and atoms are below 0x20000000). No number is 0, no two are the same.
/// - Services are in the server's order, one for every output with a valid EDID. A monitor that does not tell its name
/// has
///   an empty list of product names: the name is then unknown at once, and nobody else is asked for it. A serial number
///   0 is a monitor that does not tell, so the key is missing.
PLATFORM_API Arrangement arrange(const std::vector<Monitor>& monitors, double scale);

}  // namespace platform::desktop
