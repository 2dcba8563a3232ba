// One (device, profile) entry of a walk over ColorSync's devices. Any thread.
#pragma once

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>

#include "base/owned_ref.h"

/// What a walk reads from an entry, and how the entry compares with the display that the walk is for.
struct DeviceEntry {
  /// `entry` is borrowed and must outlive this. `sought` is the text of the sought display's UUID, or null.
  DeviceEntry(CFDictionaryRef entry, CFStringRef sought);

  /// Text of the device's UUID; null when the entry has no UUID.
  OwnedRef<CFStringRef> uuid;
  /// Borrowed from the entry; null when missing or of another type.
  CFStringRef description;
  CFURLRef url;
  /// Whether the entry has all six values, each of its type.
  bool is_complete;
  /// A missing value, or one of another type, makes these false.
  bool is_sought;
  bool is_display;
  bool is_default;
  bool is_current;
};
