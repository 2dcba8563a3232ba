// The two profile maps, and the ColorSync walks that fill them. One thread at a time, the host's, may use it.
#pragma once

#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "base/interface.h"
#include "profile/profile_services.h"

namespace ProfileServices {

struct OSTREVIN_API profile_iterator {
  profile_iterator() = delete;

  static InstalledProfiles installed_profiles;
  static AssociatedProfiles associated_profiles;
  /// The UUID text of the display that was listed last; null before the first. Never released.
  static CFStringRef inUUIDstr;

  /// Empties installed_profiles and fills it with the display profiles that are installed.
  static void listAllInstalledProfiles();
  /// Empties associated_profiles and fills it with the display's profiles; leaves it as it is for a display without a
  /// UUID.
  static void listDeviceProfiles(std::uint32_t displayID);

  /// ColorSync's callbacks for one entry of a walk; always true, which lets the walk go on. An entry that lacks a value
  /// it needs, or has one of another type, is passed over. They need an autorelease pool.
  static bool profileListIterator(CFDictionaryRef info, void* userInfo);
  static bool deviceListIterator(CFDictionaryRef info, void* userInfo);

  /// Empty the map when it is not empty already.
  static void clearInstalledArray();
  static void clearAssociatedArray();
};

}  // namespace ProfileServices
