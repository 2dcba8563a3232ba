// The names of displays that were asked for once.
#include "display/display_services.h"
#include "display/unknown_name.h"

namespace DisplayServices {

CFStringRef KnownDisplayForID(CGDirectDisplayID displayID) {
  // The UUID is deliberately not released.
  return __knownDisplayForUUID(CGDisplayCreateUUIDFromDisplayID(displayID));
}

CFStringRef __knownDisplayForUUID(CFUUIDRef uuid) {  // NOLINT(bugprone-reserved-identifier): exported so
  // Kept for the life of the process, and with it every name: from UUID text to name.
  static CFMutableDictionaryRef displayDict = nullptr;
  if (displayDict == nullptr) {
    displayDict = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                            &kCFTypeDictionaryValueCallBacks);
  }
  if (uuid == nullptr) {
    return internal::unknownName();
  }
  // The text is deliberately not released.
  const CFStringRef key = CFUUIDCreateString(kCFAllocatorDefault, uuid);
  if (key == nullptr || displayDict == nullptr) {
    return internal::unknownName();
  }
  if (const void* const known = CFDictionaryGetValue(displayDict, key)) {
    return static_cast<CFStringRef>(known);
  }
  const CFStringRef name = DisplayNameForID(CGDisplayGetDisplayIDFromUUID(uuid));
  CFDictionarySetValue(displayDict, key, name);
  return name;
}

}  // namespace DisplayServices
