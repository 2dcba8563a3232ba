#include "base/device_entry.h"

#include "base/checked_value.h"

namespace {

bool equal(CFTypeRef first, CFTypeRef second) {
  return first != nullptr && second != nullptr && CFEqual(first, second);
}

}  // namespace

DeviceEntry::DeviceEntry(CFDictionaryRef entry, CFStringRef sought) {
  const auto device_class = checkedValue<CFStringRef>(entry, kColorSyncDeviceClass, CFStringGetTypeID());
  const auto device = checkedValue<CFUUIDRef>(entry, kColorSyncDeviceID, CFUUIDGetTypeID());
  description = checkedValue<CFStringRef>(entry, kColorSyncDeviceDescription, CFStringGetTypeID());
  const auto default_flag = checkedValue<CFBooleanRef>(entry, kColorSyncDeviceProfileIsDefault, CFBooleanGetTypeID());
  const auto current_flag = checkedValue<CFBooleanRef>(entry, kColorSyncDeviceProfileIsCurrent, CFBooleanGetTypeID());
  url = checkedValue<CFURLRef>(entry, kColorSyncDeviceProfileURL, CFURLGetTypeID());
  is_complete = device_class != nullptr && device != nullptr && description != nullptr && default_flag != nullptr &&
                current_flag != nullptr && url != nullptr;

  if (device != nullptr) {
    uuid = OwnedRef<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, device));
  }
  is_sought = equal(sought, uuid.get());
  is_display = equal(device_class, kColorSyncDisplayDeviceClass);
  is_default = equal(default_flag, kCFBooleanTrue);
  is_current = equal(current_flag, kCFBooleanTrue);
}
