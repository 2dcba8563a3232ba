// Which display device of colord belongs to which display, and what a display's device is registered with. Pure
// functions; any thread may call.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/colord/colord_model.h"
#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// The index of each display's device, or nullopt. A device belongs to one display at most.
///
/// Session daemons register a device with the connector's name, which may differ between X and Wayland (connector.h);
/// newer ones add the EDID's checksum. In order of preference, a display's device is the one with
///   1. its connector and its EDID, or its connector where neither has an EDID,
///   2. its connector, where just one of the two has an EDID,
///   3. its EDID, at another connector: the monitor was plugged in elsewhere,
///   4. its model and serial number, where the device has no checksum.
/// A device with the display's connector and another monitor's EDID belongs to that other monitor. Between equals, a
/// device of a connected monitor precedes one from colord's database, then the one changed last wins.
PLATFORM_API std::vector<std::optional<std::size_t>> matchDevices(const std::vector<Display>& displays,
                                                                  const std::vector<ColordDevice>& devices);

/// True for the object path of a device that is named after one of the displays: it contains the name of the connector
/// or the monitor's. Session daemons name a device after its monitor, or after its connector if the monitor has no
/// EDID.
PLATFORM_API std::function<bool(const std::string& object_path)> namedAfter(const std::vector<Display>& displays);

/// Whether each display has one of these devices by the first of these rules.
PLATFORM_API bool haveOwnDevices(const std::vector<Display>& displays, const std::vector<ColordDevice>& devices);

/// The registration that a session daemon would make: the id is "xrandr" with the EDID's vendor, name and serial
/// number, or with the connector where the EDID does not identify the display. `devices` are the registered ones.
PLATFORM_API ColordRegistration registrationFor(const std::vector<Display>& displays, std::size_t display,
                                                const std::vector<ColordDevice>& devices);

}  // namespace platform::desktop
