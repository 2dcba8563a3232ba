// The desktop behind the frameworks in this process. Any thread may call.
#pragma once

#include <memory>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// Chosen on first use: the scripted desktop of the file named by OSTREVIN_DESKTOP, else the live one. An unusable file
/// gives one line on stderr and a desktop without displays.
PLATFORM_API std::shared_ptr<Desktop> current();

/// The computer's own desktop: displays from the X server, profiles from colord and from ICC files.
PLATFORM_API std::shared_ptr<Desktop> makeLiveDesktop();

/// Replaces the current desktop, for tests and tools; with null, the next use chooses as on first use.
PLATFORM_API void setCurrent(std::shared_ptr<Desktop> desktop);

}  // namespace platform::desktop
