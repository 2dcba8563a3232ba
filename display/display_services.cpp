#include "display/display_services.h"

#include <IOKit/graphics/IOGraphicsLib.h>

#include <vector>

#include "base/checked_value.h"
#include "base/owned_ref.h"
#include "display/internal.h"

namespace DisplayServices {
namespace {

using internal::IoObject;
using internal::leakOnPurpose;
using internal::unknownName;

/// The first product name, in any language: IOKit was asked for the preferred language only. Null when it is not
/// a string, and when there are more names than languages.
CFStringRef firstName(CFDictionaryRef names, CFIndex count) {
  constexpr CFIndex kMostNames = 10'000;
  if (count > kMostNames) {
    return nullptr;
  }
  std::vector<const void*> keys(static_cast<std::size_t>(count));
  std::vector<const void*> values(keys.size());
  CFDictionaryGetKeysAndValues(names, keys.data(), values.data());
  return checkedCast<CFStringRef>(values.front(), CFStringGetTypeID());
}

/// Kept for the life of the process: a name that is returned lives inside it.
CFDictionaryRef leakedInfo(io_service_t service) {
  return leakOnPurpose(IODisplayCreateInfoDictionary(service, kIODisplayOnlyPreferredName));
}

/// Deliberately not released. Null without a UUID.
CFStringRef leakedKey(CFUUIDRef uuid) {
  return uuid != nullptr ? leakOnPurpose(CFUUIDCreateString(kCFAllocatorDefault, uuid)) : nullptr;
}

/// The product names of the display in IOKit; null when IOKit has no such display or no names for it.
CFDictionaryRef productNames(CGDirectDisplayID displayID) {
  const IoObject service = IoObject::adopt(device_iterator::IOServicePortFromCGDisplayID(displayID));
  if (!service) {
    return nullptr;
  }
  const CFDictionaryRef info = leakedInfo(service.get());
  return info != nullptr ? checkedValue<CFDictionaryRef>(info, CFSTR(kDisplayProductName), CFDictionaryGetTypeID())
                         : nullptr;
}

}  // namespace

// --- names

CFStringRef DisplayNameForID(CGDirectDisplayID displayID) {
  const CFDictionaryRef names = productNames(displayID);
  const CFIndex count = names != nullptr ? CFDictionaryGetCount(names) : 0;
  // Deliberately final: ColorSync is asked only about a display whose first product name is unusable.
  if (count <= 0) {
    return unknownName();
  }
  const CFStringRef name = firstName(names, count);
  if (name != nullptr && CFStringGetLength(name) != 0) {
    return name;
  }
  // The UUID is deliberately not released.
  return displayNameUsingColorSync(leakOnPurpose(CGDisplayCreateUUIDFromDisplayID(displayID)));
}

CFStringRef KnownDisplayForID(CGDirectDisplayID displayID) {
  // The UUID is deliberately not released.
  return __knownDisplayForUUID(leakOnPurpose(CGDisplayCreateUUIDFromDisplayID(displayID)));
}

CFStringRef __knownDisplayForUUID(CFUUIDRef uuid) {  // NOLINT(bugprone-reserved-identifier): exported so
  // From UUID text to name; kept for the life of the process.
  static CFMutableDictionaryRef displayDict = nullptr;
  if (displayDict == nullptr) {
    displayDict = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                            &kCFTypeDictionaryValueCallBacks);
  }
  const CFStringRef key = leakedKey(uuid);
  if (key == nullptr) {
    return unknownName();
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

// --- profiles

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

bool internal::isWideGamut(CGDirectDisplayID displayID) {
  // Deliberately, no step is tested, as the three calls accept null, and nothing that a step returned is released.
  const CFURLRef url = ProfilePathForDisplay(displayID);
  const ColorSyncProfileRef profile = ColorSyncProfileCreateWithURL(url, nullptr);
  CGColorSpaceRef space = CGColorSpaceCreateWithPlatformColorSpace(profile);
  // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): not released, as said above
  return CGColorSpaceIsWideGamutRGB(space);
}

}  // namespace DisplayServices
