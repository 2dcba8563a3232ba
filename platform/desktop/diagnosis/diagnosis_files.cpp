#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/icc/known_folder.h"

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

ProfileFolder examine(const std::string& path) {
  ProfileFolder folder;
  folder.path = path;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(path, fs::directory_options::skip_permission_denied, error), end;
       !error && entry != end; entry.increment(error)) {
    std::error_code unknown;
    const std::string file = entry->path().string();
    if (!isProfileName(file) || entry->is_directory(unknown)) {
      continue;
    }
    const ProfileFault fault = faultOfProfile(file);
    if (fault == ProfileFault::kNone) {
      ++folder.profiles;
    } else {
      folder.faults.emplace_back(file, fault);
    }
  }
  folder.readable = access(path.c_str(), R_OK | X_OK) == 0;
  std::sort(folder.faults.begin(), folder.faults.end());
  return folder;
}

}  // namespace

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
  for (const std::string& path : installedProfileFolders()) {
    std::error_code unknown;
    if (fs::is_directory(path, unknown)) {
      folders.push_back(examine(path));
    }
  }
  return folders;
}

}  // namespace platform::desktop
