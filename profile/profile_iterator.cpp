#include "profile/profile_iterator.h"

#include <algorithm>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "base/checked_value.h"
#include "base/owned_ref.h"
#include "profile/platform_text.h"

namespace ProfileServices {
namespace {

/// Equal objects; false for null.
bool equal(CFTypeRef first, CFTypeRef second) {
  return first != nullptr && second != nullptr && CFEqual(first, second);
}

/// Takes away the spaces that the name begins with, and only spaces: what the regular expression "^ +" matches. (A
/// std::regex would need a stack frame for each of them.)
void removeLeadingSpaces(std::string& name) { name.erase(0, std::min(name.find_first_not_of(' '), name.size())); }

OwnedRef<CFStringRef> uuidText(CFTypeRef uuid) {
  if (uuid == nullptr || CFGetTypeID(uuid) != CFUUIDGetTypeID()) {
    return {};
  }
  return OwnedRef<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, static_cast<CFUUIDRef>(uuid)));
}

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
  if (checkedCast<CFDictionaryRef>(info, CFDictionaryGetTypeID()) == nullptr ||
      !equal(CFDictionaryGetValue(info, kColorSyncProfileClass), kColorSyncSigDisplayClass)) {
    return true;
  }
  std::optional<std::string> name = utf8Text(CFDictionaryGetValue(info, kColorSyncProfileDescription));
  std::optional<std::string> path = posixPath(CFDictionaryGetValue(info, kColorSyncProfileURL));
  if (name && path) {
    removeLeadingSpaces(*name);
    // ColorSync tends to go through a folder by name, so the end of the map is a good guess.
    installed_profiles.emplace_hint(installed_profiles.end(), *std::move(path), *std::move(name));
  }
  return true;
}

void profile_iterator::listDeviceProfiles(std::uint32_t displayID) {
  const auto uuid = OwnedRef<CFUUIDRef>::adopt(CGDisplayCreateUUIDFromDisplayID(displayID));
  OwnedRef<CFStringRef> text = uuidText(uuid.get());
  if (!text) {
    return;  // deliberate: the last display's profiles stay
  }
  // Owned by the static member until the next display takes its place.
  OwnedRef<CFStringRef>::adopt(std::exchange(inUUIDstr, text.release()));
  clearAssociatedArray();
  ColorSyncIterateDeviceProfiles(deviceListIterator, nullptr);
}

bool profile_iterator::deviceListIterator(CFDictionaryRef info, void*) {
  if (checkedCast<CFDictionaryRef>(info, CFDictionaryGetTypeID()) == nullptr) {
    return true;
  }
  const CFTypeRef device_class = CFDictionaryGetValue(info, kColorSyncDeviceClass);
  const CFTypeRef device_id = CFDictionaryGetValue(info, kColorSyncDeviceID);
  const CFTypeRef is_default = CFDictionaryGetValue(info, kColorSyncDeviceProfileIsDefault);
  const CFTypeRef is_current = CFDictionaryGetValue(info, kColorSyncDeviceProfileIsCurrent);
  const CFTypeRef url = CFDictionaryGetValue(info, kColorSyncDeviceProfileURL);

  const OwnedRef<CFStringRef> device_text = uuidText(device_id);
  const bool same_device = equal(inUUIDstr, device_text.get());
  const bool display = equal(device_class, kColorSyncDisplayDeviceClass);
  const bool is_default_profile = equal(is_default, kCFBooleanTrue);
  const bool is_current_profile = equal(is_current, kCFBooleanTrue);
  if (!same_device || !display) {
    return true;
  }
  std::optional<std::string> path = posixPath(url);
  if (path) {
    // Deliberate: a path that is not installed becomes an installed profile without a name.
    const std::string& name = installed_profiles[*path];
    associated_profiles.emplace(*std::move(path), std::make_tuple(name, is_default_profile, is_current_profile));
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
  // Deliberate: once there are profiles, it is not asked whose they are.
  if (profile_iterator::associated_profiles.empty()) {
    ListProfilesForDisplay(displayID);
  }
  return profile_iterator::associated_profiles.size();
}

}  // namespace ProfileServices
