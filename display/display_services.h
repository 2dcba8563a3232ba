// DisplayServices: names of displays and assignment of profiles; with the headers that it includes, all of them.
//
// The host's thread is the only caller; nothing here is locked. A display number is CoreGraphics' (0 is no display).
// "Borrowed" means that the caller neither releases the result nor needs to keep it alive: it stays valid for the life
// of the process.
#pragma once

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "base/interface.h"
#include "display/device_iterator.h"
#include "display/monitors_set.h"
#include "display/screens.h"

namespace DisplayServices {

/// The display's name, found once per UUID and cached for the life of the process, "UNKNOWN" too. Borrowed;
/// never null. The first call for a display may take 10 seconds (see displayNameUsingColorSync). A display without a
/// UUID is "UNKNOWN", which is not cached.
OSTREVIN_API CFStringRef KnownDisplayForID(CGDirectDisplayID displayID);

/// The same for the UUID of a display (not consumed; null is a display without one).
OSTREVIN_API CFStringRef __knownDisplayForUUID(CFUUIDRef uuid);  // NOLINT(bugprone-reserved-identifier): exported so

/// The display's name, searched at each call: IOKit's product name or, when that is empty or not a string, ColorSync's
/// description. "UNKNOWN" when IOKit has no such display or no product names for it; ColorSync is then deliberately not
/// asked. Borrowed; never null.
OSTREVIN_API CFStringRef DisplayNameForID(CGDirectDisplayID displayID);

/// Makes the file at `url` (not consumed) the display's custom profile of the default mode. Returns ColorSync's result;
/// false when `url` is null or the display has no UUID. The file is not checked here.
OSTREVIN_API bool SetProfileForDisplay(CFURLRef url, CGDirectDisplayID displayID);

/// The same for the UUID of a display, which is consumed: it is released in every case.
OSTREVIN_API bool SetProfileForDisplay64(CFURLRef url, CFUUIDRef uuid);

}  // namespace DisplayServices
