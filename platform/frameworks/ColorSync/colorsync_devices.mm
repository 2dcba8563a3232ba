// ColorSync's devices and the displays' UUIDs, over the current desktop.
#include <ColorSync/ColorSync.h>

#import <Foundation/Foundation.h>

#include <memory>
#include <optional>
#include <string>

#include "desktop/current.h"
#include "frameworks/CoreFoundation/uuids.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/utf8_objects.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::ScopedPool;
using platform::calls::Call;
using platform::desktop::DeviceProfile;
using platform::desktop::Display;
using platform::desktop::Uuid;
namespace calls = platform::calls;

namespace {

/// An absent value, or text that is not UTF-8, leaves the key out.
void put(NSMutableDictionary* entry, CFStringRef key, id value) {
  if (value != nil) {
    [entry setObject:value forKey:(NSString*)key];
  }
}

NSString* stringOf(const std::optional<std::string>& text) {
  return text ? [platform::newString(*text) autorelease] : nil;
}

id booleanOf(const std::optional<bool>& value) { return value ? (id)(*value ? kCFBooleanTrue : kCFBooleanFalse) : nil; }

id uuidOf(const std::optional<Uuid>& value) { return value ? [(id)platform::makeUuid(*value) autorelease] : nil; }

// The two values that a caller may keep have functions of their own: a leak checker knows them by these.

NSURL* deviceProfileUrl(const DeviceProfile& profile) {
  NSString* const path = stringOf(profile.profile_path);
  return path == nil ? nil : [NSURL fileURLWithPath:path isDirectory:NO];
}

NSString* deviceDescription(const DeviceProfile& profile) { return stringOf(profile.description); }

NSMutableDictionary* newEntry(const DeviceProfile& profile) {
  NSMutableDictionary* const entry = [[NSMutableDictionary alloc] init];
  put(entry, kColorSyncDeviceClass, stringOf(profile.device_class));
  put(entry, kColorSyncDeviceID, uuidOf(profile.device_id));
  put(entry, kColorSyncDeviceDescription, deviceDescription(profile));
  put(entry, kColorSyncDeviceProfileIsDefault, booleanOf(profile.is_default));
  put(entry, kColorSyncDeviceProfileIsCurrent, booleanOf(profile.is_current));
  put(entry, kColorSyncDeviceProfileURL, deviceProfileUrl(profile));
  return entry;
}

/// The path of the file URL under the key of the default profile; nullopt when there is none.
std::optional<std::string> customProfilePath(NSDictionary* profiles) {
  const id url = [profiles objectForKey:(NSString*)kColorSyncDeviceDefaultProfileID];
  if (![url isKindOfClass:[NSURL class]] || ![url isFileURL]) {
    return std::nullopt;
  }
  const char* const path = [[url path] UTF8String];
  return path == nullptr ? std::nullopt : std::optional<std::string>(path);
}

}  // namespace

extern "C" {

void ColorSyncIterateDeviceProfiles(ColorSyncDeviceProfileIterateCallback callBack, void* userInfo) {
  const calls::Fault fault = calls::fault(Call::ColorSyncIterateDeviceProfiles);
  if (fault.fail || callBack == nullptr) {
    return;
  }
  platform::desktop::current()->visitDeviceProfiles([=](const DeviceProfile& profile) {
    const ScopedPool pool;
    // The entry and what is in it go away after the callback, unless the callback took references.
    NSMutableDictionary* const entry = newEntry(profile);
    const bool go_on = platform::showEntry(fault.edit, (CFDictionaryRef)entry,
                                           [=](CFDictionaryRef shown) { return callBack(shown, userInfo); });
    [entry release];
    return go_on;
  });
}

bool ColorSyncDeviceSetCustomProfiles(CFStringRef deviceClass, CFUUIDRef deviceID, CFDictionaryRef profileInfo) {
  const calls::Fault fault = calls::fault(Call::ColorSyncDeviceSetCustomProfiles);
  if (fault.fail || fault.number) {
    return fault.number.value_or(0) != 0;
  }
  if (deviceClass == nullptr || deviceID == nullptr || profileInfo == nullptr) {
    return false;
  }
  const ScopedPool pool;
  if (![(NSString*)deviceClass isEqual:(NSString*)kColorSyncDisplayDeviceClass] || !platform::isUuid((id)deviceID)) {
    return false;
  }
  return platform::showEntry(fault.edit, profileInfo, [=](CFDictionaryRef given) {
    const std::optional<std::string> path = customProfilePath((NSDictionary*)given);
    return path && platform::desktop::current()->setDeviceProfile(platform::bytesOf(deviceID), *path);
  });
}

CFUUIDRef CGDisplayCreateUUIDFromDisplayID(uint32_t displayID) {
  if (const auto fault = platform::retainedFault<CFUUIDRef>(calls::fault(Call::CGDisplayCreateUUIDFromDisplayID))) {
    return *fault;
  }
  const auto arrangement = platform::desktop::current()->arrangement();
  for (const Display& display : arrangement->displays) {
    if (display.number == displayID) {
      return display.uuid ? platform::makeUuid(*display.uuid) : nullptr;
    }
  }
  return nullptr;
}

uint32_t CGDisplayGetDisplayIDFromUUID(CFUUIDRef uuid) {
  const calls::Fault fault = calls::fault(Call::CGDisplayGetDisplayIDFromUUID);
  if (fault.fail || fault.number) {
    return static_cast<uint32_t>(fault.number.value_or(0));
  }
  if (uuid == nullptr) {
    return 0;
  }
  const Uuid wanted = platform::bytesOf(uuid);
  const auto arrangement = platform::desktop::current()->arrangement();
  for (const Display& display : arrangement->displays) {
    if (display.uuid == wanted) {
      return display.number;
    }
  }
  return 0;
}

}  // extern "C"
