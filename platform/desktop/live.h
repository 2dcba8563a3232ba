// The computer's own desktop: displays from the X server, profiles from colord and from ICC files.
#pragma once

#include <memory>

#include "desktop/desktop.h"
#include "desktop/export.h"

namespace platform::desktop {

PLATFORM_API std::shared_ptr<Desktop> makeLiveDesktop();

}  // namespace platform::desktop
