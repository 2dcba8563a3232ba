// The names of displays that were asked for once.
#include "display/display_services.h"
#include "display/kept.h"
#include "display/unknown_name.h"

namespace DisplayServices {
namespace {

/// What a name is kept under: the UUID's text, or null. The text is deliberately not released.
CFStringRef keptKey(CFUUIDRef uuid) {
  return uuid != nullptr ? internal::kept(CFUUIDCreateString(kCFAllocatorDefault, uuid)) : nullptr;
}

}  // namespace

CFStringRef KnownDisplayForID(CGDirectDisplayID displayID) {
  // The UUID is deliberately not released.
  return __knownDisplayForUUID(internal::kept(CGDisplayCreateUUIDFromDisplayID(displayID)));
}

CFStringRef __knownDisplayForUUID(CFUUIDRef uuid) {  // NOLINT(bugprone-reserved-identifier): exported so
  // Kept for the life of the process, and with it every name: from UUID text to name.
  static CFMutableDictionaryRef displayDict = nullptr;
  if (displayDict == nullptr) {
    displayDict = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                            &kCFTypeDictionaryValueCallBacks);
  }
  const CFStringRef key = keptKey(uuid);
  if (key == nullptr) {
    return internal::unknownName();
  }
  const void* const known = displayDict != nullptr ? CFDictionaryGetValue(displayDict, key) : nullptr;
  if (known != nullptr) {
    return static_cast<CFStringRef>(known);
  }
  const CFStringRef name = DisplayNameForID(CGDisplayGetDisplayIDFromUUID(uuid));
  if (displayDict != nullptr) {
    CFDictionarySetValue(displayDict, key, name);
  }
  return name;
}

}  // namespace DisplayServices
