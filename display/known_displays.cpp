// The names of displays that were asked for once.
#include "base/checked_value.h"
#include "display/display_services.h"
#include "display/kept.h"
#include "display/unknown_name.h"

namespace DisplayServices {
namespace {

/// What a name is kept under: the UUID's text, or null. The text is deliberately not released.
CFStringRef keptKey(CFUUIDRef uuid) {
  if (checkedCast<CFUUIDRef>(uuid, CFUUIDGetTypeID()) == nullptr) {
    return nullptr;
  }
  return checkedCast<CFStringRef>(internal::kept(CFUUIDCreateString(kCFAllocatorDefault, uuid)), CFStringGetTypeID());
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
    displayDict = checkedAdopt<CFMutableDictionaryRef>(
                      CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                &kCFTypeDictionaryValueCallBacks),
                      CFDictionaryGetTypeID())
                      .release();
  }
  const CFStringRef key = keptKey(uuid);
  if (key == nullptr) {
    return internal::unknownName();
  }
  const auto known =
      displayDict != nullptr ? checkedValue<CFStringRef>(displayDict, key, CFStringGetTypeID()) : nullptr;
  if (known != nullptr) {
    return known;
  }
  const CFStringRef name = DisplayNameForID(CGDisplayGetDisplayIDFromUUID(uuid));
  if (displayDict != nullptr) {
    CFDictionarySetValue(displayDict, key, name);
  }
  return name;
}

}  // namespace DisplayServices
