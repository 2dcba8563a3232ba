// The desktop that the frameworks answer from in this process.
#pragma once

#include <memory>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// Chosen on first use and kept: the scripted desktop that the file named by OSTREVIN_DESKTOP describes, or the live
/// one. A file that cannot be used gives one line on stderr and a desktop without displays.
PLATFORM_API std::shared_ptr<Desktop> current();

/// The computer's own desktop: displays from the X server, profiles from colord and from ICC files.
PLATFORM_API std::shared_ptr<Desktop> makeLiveDesktop();

/// Replaces the current desktop, for tests and tools; null means that the next use chooses again.
PLATFORM_API void setCurrent(std::shared_ptr<Desktop> desktop);

}  // namespace platform::desktop
