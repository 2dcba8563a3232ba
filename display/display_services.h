// DisplayServices: what the facade asks about displays: known names, current profiles, assignment, screens and scale.
//
// The host's thread is the only caller; nothing here is locked. A display number is CoreGraphics' (0 is no display).
// "Borrowed" means that the caller neither releases the result nor needs to keep it alive: it stays valid for the life
// of the process.
#pragma once

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "base/export.h"
#include "display/device_iterator.h"
#include "display/monitors_set.h"
#include "display/screens.h"

namespace DisplayServices {

/// Adds the active displays to monitors_set::initialSet, which is not emptied first.
OSTREVIN_API void BuildInitialMonitorsSet();

/// True when the active displays are others than those in monitors_set::initialSet, which then takes them: a change is
/// reported once. Only which displays are active counts, not where they are or at what resolution.
OSTREVIN_API bool DisplaysChanged();

/// The display's name, found once per UUID and then remembered for the life of the process, "UNKNOWN" too. Borrowed;
/// never null. The first call for a display may take 10 seconds (see displayNameUsingColorSync). A display without a
/// UUID is "UNKNOWN", which is not remembered.
OSTREVIN_API CFStringRef KnownDisplayForID(CGDirectDisplayID displayID);

/// The same for the UUID of a display (not consumed; null is a display without one).
OSTREVIN_API CFStringRef __knownDisplayForUUID(CFUUIDRef uuid);  // NOLINT(bugprone-reserved-identifier): exported so

/// The display's name, found afresh: the product name that IOKit knows, or, when IOKit has one that is empty or no
/// text, the name that ColorSync knows. "UNKNOWN" when IOKit does not know the display or has no product names for it;
/// ColorSync is then deliberately not asked. Borrowed; never null.
OSTREVIN_API CFStringRef DisplayNameForID(CGDirectDisplayID displayID);

/// ColorSync's description of the display with this UUID (not consumed); "UNKNOWN" when ColorSync gave no answer within
/// 10 seconds, and at once when `uuid` is null or there is no queue for the walk. Borrowed; never null.
OSTREVIN_API CFStringRef displayNameUsingColorSync(CFUUIDRef uuid);

/// The file URL of the display's current profile. The caller releases. Null, without a reference, when ColorSync gave
/// no answer within 2 seconds, and at once when the display has no UUID or there is no queue for the walk.
OSTREVIN_API CFURLRef ProfilePathForDisplay(CGDirectDisplayID displayID);

/// Makes the file at `url` (not consumed) the display's custom profile of the default mode. ColorSync's answer; false
/// when `url` is null or the display has no UUID. Whether the file exists or is a profile is left to ColorSync.
OSTREVIN_API bool SetProfileForDisplay(CFURLRef url, CGDirectDisplayID displayID);

/// The same for the UUID of a display, which is consumed: it is released whatever the result.
OSTREVIN_API bool SetProfileForDisplay64(CFURLRef url, CFUUIDRef uuid);

}  // namespace DisplayServices
