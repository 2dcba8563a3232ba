// Queries that walk the devices of ColorSync and IOKit.
//
// A ColorSync walk runs on a worker thread, and may outlive the query that began it. It shares with later queries
// only the four static variables below, which are deliberately plain and unlocked; what they point to is
// never released.
#pragma once

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <IOKit/IOKitLib.h>

#include <vector>

#include "base/interface.h"
#include "base/owned_ref.h"

namespace DisplayServices {

struct device_iterator {
  device_iterator() = delete;

  /// A dictionary with three entries: "UUID" (text of the device's UUID), "Name" (its description) and "URL" (of the
  /// profile).
  using DeviceRecord = OwnedRef<CFDictionaryRef>;

  /// Text of the sought display's UUID; one variable for all walks.
  OSTREVIN_API static CFStringRef inUUIDstr;
  /// URL of the profile that matched last; the callback takes a reference on it.
  OSTREVIN_API static CFURLRef profile_path;
  /// Description of the device that matched last; "Empty" after a profile query that matched nothing.
  OSTREVIN_API static CFStringRef device_name;
  /// Deliberately null for the life of the process: there is no cache, and every query walks ColorSync.
  OSTREVIN_API static std::vector<DeviceRecord>* devices_info;

  /// The file URL of the display's current profile; null when no entry is both its default and its current one, after 2
  /// seconds. Not retained for the caller; valid for the life of the process. Host's thread.
  OSTREVIN_API static CFURLRef profileForCGDirectDisplayID(CGDirectDisplayID displayID);

  /// ColorSync's callback for one (device, profile) entry; returns whether to go on. `userInfo` is the query's
  /// std::promise<bool>, which a match fulfils. An entry that lacks a value, or has one of another type, does not
  /// match. Any thread.
  OSTREVIN_API static bool deviceListIterator(CFDictionaryRef entry, void* userInfo);

  /// The first "IODisplayConnect" service in IOKit's order with the display's vendor, model and serial number; a
  /// service without a serial number has the number 0. The caller releases with IOObjectRelease. 0 when none matches.
  /// Host's thread.
  OSTREVIN_API static io_service_t IOServicePortFromCGDisplayID(CGDirectDisplayID displayID);
};

/// ColorSync's description of the display with this UUID (not consumed); "UNKNOWN" when no entry matched within 10
/// seconds, and at once when `uuid` is null or no queue can be made for the walk. Borrowed; never null. Host's thread.
OSTREVIN_API CFStringRef displayNameUsingColorSync(CFUUIDRef uuid);

/// The file URL of the display's current profile. The caller releases. Null, without a reference, when no entry matched
/// within 2 seconds, and at once when the display has no UUID or no queue can be made for the walk. Host's thread.
OSTREVIN_API CFURLRef ProfilePathForDisplay(CGDirectDisplayID displayID);

}  // namespace DisplayServices
