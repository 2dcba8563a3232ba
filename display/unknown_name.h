// The name of a display that has none.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace DisplayServices::internal {

/// Borrowed; one constant object.
inline CFStringRef unknownName() { return CFSTR("UNKNOWN"); }

}  // namespace DisplayServices::internal
