// UUIDs as text, and the UUIDs of displays, which stay the same from one start of the computer to the next. Any thread
// may call.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// The 36 characters of RFC 4122, section 3, in upper case.
std::string uuidText(const Uuid& uuid);
/// The reverse, case-insensitive; nothing for a text of another shape.
std::optional<Uuid> parseUuid(std::string_view text);

/// The UUID of the monitor with this EDID at this connector: name-based, version 5 of RFC 4122, in a namespace of our
/// own. Names of one connector that differ between X and Wayland count as one (connector.h).
///
/// Two monitors of one model and serial differ by their connectors. Only the EDID's base block counts, and only when it
/// is valid, so that a monitor keeps its identity when an extension block is misread. Without a valid EDID the
/// connector alone is the identity.
PLATFORM_API Uuid outputUuid(std::span<const std::uint8_t> edid, std::string_view connector);

/// The UUID, by its name, of a monitor without an output of its own, such as one that the user cut out of a larger one.
/// Differs from the UUID of every output.
PLATFORM_API Uuid virtualMonitorUuid(std::string_view name);

}  // namespace platform::desktop
