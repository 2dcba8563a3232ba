#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/icc/icc_file.h"
#include "desktop/icc/icc_folders.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/icc/known_folder.h"
#include "desktop/model/big_endian.h"

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
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return errno == EACCES ? ProfileFault::kUnreadable : ProfileFault::kMissing;
  }
  if (!S_ISREG(status.st_mode)) {
    return ProfileFault::kNotRegular;
  }
  if (static_cast<std::uint64_t>(status.st_size) > kMaxIccFileSize) {
    return ProfileFault::kTooLarge;
  }
  const auto file = IccFile::open(path);
  if (!file) {
    return ProfileFault::kUnreadable;
  }
  const auto profile = IccProfile::parse(*file);
  if (!profile) {
    return ProfileFault::kNotAProfile;
  }
  return bigEndian32(profile->header().data()) > file->size() ? ProfileFault::kIncomplete : ProfileFault::kNone;
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
