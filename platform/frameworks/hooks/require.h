// What the frameworks do about a null where an object is needed: as on the Mac, the process stops.
//
// A guard that is missing in the plugin is then found here, by a test, and not on a customer's Mac. Any thread.
#pragma once

#include "desktop/model/export.h"

namespace platform {

/// Writes "FUNCTION: REASON" as one line on stderr and aborts.
[[noreturn]] PLATFORM_API void stop(const char* function, const char* reason);

/// Stops the process when `object` is null.
inline void requireObject(const void* object, const char* function) {
  if (object == nullptr) [[unlikely]] {
    stop(function, "null is no object");
  }
}

}  // namespace platform
