#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/icc/icc_walk.h"

namespace platform::desktop {

ProfileFault faultOfProfile(const std::string& path) {
  const RegularFile file(path);
  std::uint8_t byte = 0;
  if (!file) {
    const bool is_missing = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
    return errno == 0 ? ProfileFault::kNotRegular : is_missing ? ProfileFault::kMissing : ProfileFault::kUnreadable;
  }
  if (file.size() > kMaxIccFileSize) {
    return ProfileFault::kTooLarge;
  }
  if (file.read(0, &byte, 1) < 0) {
    return ProfileFault::kUnreadable;
  }
  const auto profile = IccProfile::of(file);
  if (!profile) {
    return ProfileFault::kNotAProfile;
  }
  return bigEndian32(profile->header().data()) > file.size() ? ProfileFault::kIncomplete : ProfileFault::kNone;
}

std::vector<ProfileFolder> examineProfileFolders() {
  std::vector<ProfileFolder> folders;
  const std::vector<std::string> paths = installedProfileFolders();
  for (const std::string& path : paths) {
    std::error_code unknown;
    if (std::filesystem::is_directory(path, unknown)) {
      folders.push_back({.path = path, .readable = access(path.c_str(), R_OK | X_OK) == 0});
    }
  }
  const auto add = [&](const std::string& path) {
    const auto folder = std::find_if(folders.begin(), folders.end(),
                                     [&](const ProfileFolder& one) { return path.starts_with(one.path + '/'); });
    const ProfileFault fault = faultOfProfile(path);
    if (folder != folders.end() && fault == ProfileFault::kNone) {
      ++folder->profiles;
    } else if (folder != folders.end()) {
      folder->faults.emplace_back(path, fault);
    }
  };
  const auto add_profile = [&](const InstalledProfile& profile) {
    add(*profile.path);
    return true;
  };
  IccWalk(userLanguage(), KnownFolders(), add_profile, add).run(paths);
  for (ProfileFolder& folder : folders) {
    std::sort(folder.faults.begin(), folder.faults.end());
  }
  return folders;
}

}  // namespace platform::desktop
