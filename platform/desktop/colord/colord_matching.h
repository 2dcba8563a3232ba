// Which display device of colord belongs to which display, and what a display's device is registered with.
//
// Pure functions of their arguments; any thread may call them.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "desktop/colord/colord_model.h"
#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// For each display of the arrangement the index of its device, or nullopt. A device belongs to one display at most.
///
/// Colour session daemons register a device with the connector's name and, the newer ones, with the EDID's checksum. In
/// order of preference a display's device is the one that has
///   1. its connector and its EDID,
///   2. its connector, where one of the two has no EDID to compare,
///   3. its EDID, at another connector: the monitor was plugged in elsewhere,
///   4. its model and serial number, where the device has no checksum.
/// A device with the display's connector and another monitor's EDID is that other monitor's. Between equals, a device
/// that is registered for a monitor that is there comes before one that colord only remembers, then the one changed
/// last.
PLATFORM_API std::vector<std::optional<std::size_t>> matchDevices(const std::vector<Display>& displays,
                                                                  const std::vector<ColordDevice>& devices);

/// What a session daemon would register the display with: "xrandr" and the EDID's vendor, name and serial number as the
/// id, or the connector where the EDID does not tell the display from another one. `devices` are those registered
/// already.
PLATFORM_API ColordRegistration registrationFor(const std::vector<Display>& displays, std::size_t display,
                                                const std::vector<ColordDevice>& devices);

}  // namespace platform::desktop
