// The desktop behind the frameworks in this process. Any thread may call.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// Where the live desktop's displays come from.
enum class LiveSource {
  kAny,      ///< the Wayland compositor if it can be reached, else the X server
  kWayland,  ///< the Wayland compositor that WAYLAND_DISPLAY names
  kX11,      ///< the X server that DISPLAY names
};

/// The source that "live", "wayland" or "x11" stands for; nothing for another word.
PLATFORM_API std::optional<LiveSource> liveSourceNamed(std::string_view word);

/// Chosen on first use by OSTREVIN_DESKTOP: the live desktop of a source, or the scripted desktop of the file that it
/// names. Without the variable the live one of any source. An unusable file gives one line on stderr and a desktop
/// without displays.
PLATFORM_API std::shared_ptr<Desktop> current();

/// The computer's own desktop: displays from the compositor or the X server, profiles from colord and from ICC files.
PLATFORM_API std::shared_ptr<Desktop> makeLiveDesktop(LiveSource source = LiveSource::kAny);

/// Replaces the current desktop, for tests and tools; with null, the next use chooses as on first use.
PLATFORM_API void setCurrent(std::shared_ptr<Desktop> desktop);

}  // namespace platform::desktop
