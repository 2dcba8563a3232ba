// Makes a profile file the custom profile of a display.
#include "base/checked_value.h"
#include "display/display_services.h"

namespace DisplayServices {

bool SetProfileForDisplay(CFURLRef url, CGDirectDisplayID displayID) {
  return SetProfileForDisplay64(url, CGDisplayCreateUUIDFromDisplayID(displayID));
}

bool SetProfileForDisplay64(CFURLRef url, CFUUIDRef uuid) {
  const auto display = checkedAdopt<CFUUIDRef>(uuid, CFUUIDGetTypeID());
  if (url == nullptr || !display) {
    return false;
  }
  const void* key = kColorSyncDeviceDefaultProfileID;
  const void* value = url;
  const auto profiles = checkedAdopt<CFDictionaryRef>(
      CFDictionaryCreate(kCFAllocatorDefault, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks,
                         &kCFTypeDictionaryValueCallBacks),
      CFDictionaryGetTypeID());
  return profiles && ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, display.get(), profiles.get());
}

}  // namespace DisplayServices
