// From a server's monitors to displays, screens and services. Any thread may call.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// An active monitor. Its rectangle is in the server's units, which are pixels under X and points under Wayland, with y
/// growing downwards, after any rotation.
struct Monitor {
  std::string name;  ///< unique on the server
  std::uint32_t name_atom = 0;
  std::uint32_t output = 0;                       ///< the id of the monitor's first output, or 0 when it has none
  std::string connector;                          ///< that output's name; empty when it has none
  std::vector<std::uint8_t> edid;                 ///< of that output; not checked
  std::string edid_path;                          ///< the file with the EDID; empty when it comes from the server
  std::optional<std::uint16_t> described_vendor;  ///< as in an EDID; counts without a valid one
  std::string described_name;                     ///< the product's; counts without a valid EDID
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool primary = false;
  std::optional<double> backing_scale;  ///< pixels per point; absent: the server's units per point
};

/// Vendor, model and serial of a display without a valid EDID: the values that CoreGraphics documents for a display
/// that it cannot identify (kDisplayVendorIDUnknown, kDisplayProductIDGeneric, 0).
inline constexpr std::uint32_t kUnknownVendor = 0x756E6B6E;
inline constexpr std::uint32_t kUnknownModel = 0x717;
inline constexpr std::uint32_t kUnknownSerial = 0;

/// The language code under which a monitor's name is listed. An EDID does not state the language.
inline constexpr const char* kProductNameLanguage = "en_US";

/// Arranges the monitors, given in the server's order, `scale` of the server's units to the point.
///
/// - Displays and screens are in the server's order, except that the first primary monitor comes first. The first one
///   is the main display and main screen. A monitor without an area is left out.
/// - All coordinates are relative to the main display. Where the scales differ, a screen's frame is its display's
///   bounds as they stand, with y growing downwards: the plugin finds a display's screen, and with it the scale, by
///   comparing the two without a conversion.
/// - A display's number is its output's id, which stays the same while the output exists. A monitor without an output,
///   and one whose output another monitor has already, gets 0x80000000 plus its name's atom (X ids and atoms are below
///   0x20000000). Numbers are unique and not 0.
/// - Services are in the server's order, one for every output with a valid EDID, and one for a monitor without, when
///   its vendor or product name is described and no other monitor with the same numbers has another name. A nameless
///   monitor has an empty list of product names, so that its name is not looked for elsewhere. The serial number 0 is
///   none, so its key is missing.
PLATFORM_API Arrangement arrange(const std::vector<Monitor>& monitors, double scale);

}  // namespace platform::desktop
