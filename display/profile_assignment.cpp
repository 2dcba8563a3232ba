// Makes a profile file the custom profile of a display.
#include "display/display_services.h"
#include "strings/owned_ref.h"

namespace DisplayServices {

bool SetProfileForDisplay(CFURLRef url, CGDirectDisplayID displayID) {
  return SetProfileForDisplay64(url, CGDisplayCreateUUIDFromDisplayID(displayID));
}

bool SetProfileForDisplay64(CFURLRef url, CFUUIDRef uuid) {
  const auto display = OwnedRef<CFUUIDRef>::adopt(uuid);
  if (url == nullptr || !display) {
    return false;
  }
  const void* key = kColorSyncDeviceDefaultProfileID;
  const void* value = url;
  const auto profiles = OwnedRef<CFDictionaryRef>::adopt(CFDictionaryCreate(
      kCFAllocatorDefault, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  return profiles && ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, display.get(), profiles.get());
}

}  // namespace DisplayServices
