// The version of macOS that the frameworks of this library say they are, for code that asks at run time what it may
// call.
#pragma once

#include "desktop/model/export.h"

namespace platform {

struct SystemVersion {
  long major = 0;
  long minor = 0;
  long patch = 0;
};

/// What they say unless a test has said otherwise.
inline constexpr SystemVersion kSystemVersion = {11, 0, 0};

/// Changes the answer of -[NSProcessInfo isOperatingSystemAtLeastVersion:] in this process. Not while it is being
/// asked.
PLATFORM_API void setSystemVersion(SystemVersion version);

}  // namespace platform
