// The computer's own desktop: displays from the X server, profiles from colord and from ICC files.
#pragma once

#include <memory>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

PLATFORM_API std::shared_ptr<Desktop> makeLiveDesktop();

}  // namespace platform::desktop
