// Connectors of monitors: their names, and the EDIDs that Linux has read from them. Any thread may call.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/model/export.h"

namespace platform::desktop {

/// The name under which X and GNOME know a connector: Linux's own, which other compositors show, but for "HDMI-A-1",
/// which is "HDMI-1" there.
PLATFORM_API std::string commonConnectorName(std::string_view name);

/// Linux's folder of connectors, unless the environment variable OSTREVIN_DRM names another one.
PLATFORM_API std::string connectorFolder();

struct ConnectorEdid {
  std::string connector;            ///< Linux's name
  std::string path;                 ///< the file; empty without one
  std::vector<std::uint8_t> bytes;  ///< not checked; empty without a monitor
};

/// The EDID of the monitor at a connector, from FOLDER/*-CONNECTOR/edid. Of several graphics cards with such a
/// connector the one with a monitor counts; when several have one, the one whose EDID has this product name, else none.
PLATFORM_API ConnectorEdid readConnectorEdid(const std::string& folder, std::string_view connector,
                                             std::string_view product_name);

/// The EDID of the only monitor at any connector; empty when there are none or several.
PLATFORM_API ConnectorEdid readOnlyEdid(const std::string& folder);

}  // namespace platform::desktop
