// Whether a file can become a display's profile. Any thread may ask.
#pragma once

#include <string>

#include "desktop/model/export.h"

namespace platform::desktop {

/// True for a regular, readable file of at most 64 MiB that is wholly there, that colord can load (it must have a
/// description), and whose profile class is the display class.
PLATFORM_API bool isDisplayProfileFile(const std::string& path);

}  // namespace platform::desktop
