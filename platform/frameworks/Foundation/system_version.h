// The version of macOS that the frameworks of this library report.
#pragma once

#include "desktop/model/export.h"

namespace platform {

struct SystemVersion {
  long major = 0;
  long minor = 0;
  long patch = 0;
};

/// The version until a test sets another.
inline constexpr SystemVersion kSystemVersion = {11, 0, 0};

/// Sets the version that isOperatingSystemAtLeastVersion: compares with, for this process. Not thread-safe.
PLATFORM_API void setSystemVersion(SystemVersion version);

}  // namespace platform
