#include "profile/profile_iterator.h"

#include <cstring>
#include <tuple>

#include "base/checked_value.h"
#include "base/device_entry.h"
#include "base/owned_ref.h"
#include "strings/string_services.h"

namespace ProfileServices {
namespace {

/// Kept for the life of the process: deliberately not released when the next display's text takes its place.
CFStringRef leakedText(CFUUIDRef uuid) { return CFUUIDCreateString(kCFAllocatorDefault, uuid); }

}  // namespace

InstalledProfiles profile_iterator::installed_profiles;
AssociatedProfiles profile_iterator::associated_profiles;
CFStringRef profile_iterator::inUUIDstr = nullptr;

void profile_iterator::clearInstalledArray() {
  if (!installed_profiles.empty()) {
    installed_profiles.clear();
  }
}

void profile_iterator::clearAssociatedArray() {
  if (!associated_profiles.empty()) {
    associated_profiles.clear();
  }
}

void profile_iterator::listAllInstalledProfiles() {
  clearInstalledArray();
  ColorSyncIterateInstalledProfiles(profileListIterator, nullptr, nullptr, nullptr);
}

bool profile_iterator::profileListIterator(CFDictionaryRef info, void*) {
  if (info == nullptr) {
    return true;
  }
  const auto profile_class = checkedValue<CFStringRef>(info, kColorSyncProfileClass, CFStringGetTypeID());
  if (profile_class == nullptr || !CFEqual(profile_class, kColorSyncSigDisplayClass)) {
    return true;
  }
  const char* const name = StringServices::CFStringRefToUTF8String(
      checkedValue<CFStringRef>(info, kColorSyncProfileDescription, CFStringGetTypeID()));
  const char* const path =
      StringServices::CFURLRefToPOSIXPath(checkedValue<CFURLRef>(info, kColorSyncProfileURL, CFURLGetTypeID()));
  if (name != nullptr && path != nullptr) {
    // Without the name's leading spaces, and only spaces. ColorSync mostly walks a folder by name, so the end of the
    // map is a good guess.
    installed_profiles.emplace_hint(installed_profiles.end(), path, name + std::strspn(name, " "));
  }
  return true;
}

void profile_iterator::listDeviceProfiles(std::uint32_t displayID) {
  const auto uuid = OwnedRef<CFUUIDRef>::adopt(CGDisplayCreateUUIDFromDisplayID(displayID));
  const CFStringRef text = uuid ? leakedText(uuid.get()) : nullptr;
  if (text == nullptr) {
    return;  // deliberate: the last display's profiles stay
  }
  inUUIDstr = text;
  clearAssociatedArray();
  ColorSyncIterateDeviceProfiles(deviceListIterator, nullptr);
}

bool profile_iterator::deviceListIterator(CFDictionaryRef info, void*) {
  if (info == nullptr) {
    return true;
  }
  const DeviceEntry entry(info, inUUIDstr);
  if (!entry.is_sought || !entry.is_display) {
    return true;
  }
  const char* const path = StringServices::CFURLRefToPOSIXPath(entry.url);
  if (path != nullptr) {
    // Deliberate: a path that is not installed becomes an installed profile without a name.
    const std::string& name = installed_profiles[path];
    associated_profiles.emplace(path, std::make_tuple(name, entry.is_default, entry.is_current));
  }
  return true;
}

InstalledProfiles ListAllInstalledProfiles() {
  profile_iterator::listAllInstalledProfiles();
  return profile_iterator::installed_profiles;
}

AssociatedProfiles ListProfilesForDisplay(std::uint32_t displayID) {
  if (GetInstalledProfilesCount() == 0) {
    profile_iterator::listAllInstalledProfiles();
  }
  profile_iterator::listDeviceProfiles(displayID);
  return profile_iterator::associated_profiles;
}

std::size_t GetInstalledProfilesCount() { return profile_iterator::installed_profiles.size(); }

std::size_t GetAssociatedProfilesCount(std::uint32_t displayID) {
  // Deliberate: once there are profiles, they are counted whichever display they belong to.
  if (profile_iterator::associated_profiles.empty()) {
    ListProfilesForDisplay(displayID);
  }
  return profile_iterator::associated_profiles.size();
}

}  // namespace ProfileServices
