#include "desktop/icc/icc_walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <string_view>

#include "desktop/icc/icc_profile.h"
#include "desktop/icc/icc_text.h"
#include "desktop/model/utf8.h"

namespace platform::desktop {
namespace {

/// A profile with a longer description, in bytes, is read at every walk.
constexpr std::size_t kMaxDescription = 4096;

using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;

/// The time by the clock that file systems take their times from.
FileTime fileSystemTime() {
  timespec time{};
  clock_gettime(CLOCK_REALTIME_COARSE, &time);
  return {time.tv_sec, time.tv_nsec};
}

/// Whether a file's name ends in .icc or .icm, in any case.
bool isProfileName(std::string_view name) {
  const std::string_view end = name.substr(name.size() - std::min<std::size_t>(name.size(), 4));
  return equalsIgnoringCase(end, ".icc") || equalsIgnoringCase(end, ".icm");
}

unsigned char typeOf(int directory, const dirent& entry) {
  struct stat status {};
  if (entry.d_type != DT_UNKNOWN || fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return entry.d_type;
  }
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

/// What a folder contains now. A file that was in `before`, which may be null, is as it was there; another is unread.
std::shared_ptr<KnownFolder> readFolder(DIR* directory, const KnownFolder* before) {
  auto folder = std::make_shared<KnownFolder>();
  std::vector<std::pair<std::string, bool>> files;  // by name, with whether they are regular
  while (const dirent* const entry = readdir(directory)) {
    const std::string_view name = entry->d_name;
    const unsigned char type = typeOf(dirfd(directory), *entry);
    if (type == DT_LNK) {
      folder->links.emplace_back(name);
    } else if (type == DT_DIR && name != "." && name != "..") {
      folder->folders.emplace_back(name);
    } else if (type != DT_DIR && isProfileName(name)) {
      files.emplace_back(name, type == DT_REG);
    }
  }
  std::sort(folder->links.begin(), folder->links.end());
  std::sort(folder->folders.begin(), folder->folders.end());
  std::sort(files.begin(), files.end());
  // The names are copied one after the other, which places them in memory in the order in which they will be used.
  folder->files.reserve(files.size());
  std::size_t next = 0;
  for (const auto& [name, is_regular] : files) {
    while (before != nullptr && next < before->files.size() && before->files[next].name < name) {
      ++next;
    }
    const bool is_known = before != nullptr && next < before->files.size() && before->files[next].name == name;
    KnownFile& file = folder->files.emplace_back(is_known ? before->files[next] : KnownFile{.name = name});
    file.is_regular = is_regular;
  }
  return folder;
}

bool isUpToDate(int directory, const KnownFile& file) {
  struct stat status {};
  return file.is_kept && fstatat(directory, file.name.c_str(), &status, 0) == 0 && identityOf(status) == file.identity;
}

}  // namespace

bool laterChangesShow(const FileIdentity& identity, FileTime now) {
  // Some file systems count in whole seconds, or in pairs of them.
  constexpr std::int64_t kCoarsestTick = 2;
  const auto& [seconds, nanoseconds] = identity.changed;
  return nanoseconds == 0 ? seconds + kCoarsestTick < now.first : identity.changed < now;
}

std::shared_ptr<const KnownFolder> KnownFolders::find(const std::string& path) const {
  const auto found = folders_.find(path);
  return found != folders_.end() ? found->second : nullptr;
}

void KnownFolders::add(const std::string& path, std::shared_ptr<const KnownFolder> folder) {
  const std::size_t files = files_ + folder->files.size();
  if (files <= kMaxFiles && folders_.emplace(path, std::move(folder)).second) {
    files_ = files;
  }
}

std::optional<KnownFolders> IccWalk::run(const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    walkTree(folder);
  }
  for (std::size_t i = 0; i < links_.size() && !stopped_; ++i) {
    followLink(std::string(links_[i]));  // its own copy: following may add links
  }
  return stopped_ ? std::nullopt : std::optional(std::move(after_));
}

void IccWalk::walkTree(const std::string& root) {
  std::vector<std::string> waiting = {root};
  while (!waiting.empty() && !stopped_) {
    const std::string path = std::move(waiting.back());
    waiting.pop_back();
    walkFolder(path, waiting);
  }
}

void IccWalk::walkFolder(const std::string& path, std::vector<std::string>& waiting) {
  const FileTime opened = fileSystemTime();
  const Directory directory(opendir(path.c_str()), closedir);
  struct stat status {};
  if (!directory || fstat(dirfd(directory.get()), &status) != 0 ||
      !directories_.emplace(status.st_dev, status.st_ino).second) {
    return;
  }
  const FileIdentity identity = identityOf(status);
  std::shared_ptr<const KnownFolder> folder = before_.find(path);
  if (!folder || !folder->is_kept || folder->identity != identity) {
    const std::shared_ptr<KnownFolder> read = readFolder(directory.get(), folder.get());
    read->identity = identity;
    read->is_kept = laterChangesShow(identity, opened);
    folder = read;
  }
  const std::string prefix = path + '/';
  for (const std::string& name : folder->links) {
    links_.push_back(prefix + name);
  }
  std::for_each(folder->folders.rbegin(), folder->folders.rend(),
                [&](const std::string& name) { waiting.push_back(prefix + name); });
  visitFiles(std::move(folder), dirfd(directory.get()), path, prefix);
}

void IccWalk::followLink(const std::string& path) {
  struct stat status {};
  const bool leads_somewhere = stat(path.c_str(), &status) == 0;
  if (leads_somewhere && S_ISDIR(status.st_mode)) {
    walkTree(path);
    return;
  }
  if (!isProfileName(path)) {
    return;
  }
  for (; gathered_ < met_.size(); ++gathered_) {
    for (const KnownFile& file : met_[gathered_]->files) {
      files_.emplace(file.identity.device, file.identity.inode);
    }
  }
  if (leads_somewhere && files_.contains({status.st_dev, status.st_ino})) {
    return;
  }
  std::shared_ptr<const KnownFolder> alone = before_.find(path);
  if (!alone || alone->files.size() != 1 || alone->files[0].is_regular != S_ISREG(status.st_mode)) {
    auto unread = std::make_shared<KnownFolder>();
    unread->files.push_back({.name = path, .is_regular = S_ISREG(status.st_mode)});
    alone = std::move(unread);
  }
  visitFiles(std::move(alone), AT_FDCWD, path, "");
}

void IccWalk::visitFiles(std::shared_ptr<const KnownFolder> folder, int directory, const std::string& path,
                         const std::string& prefix) {
  std::shared_ptr<KnownFolder> changed;  // `folder` itself once something in it has changed
  for (std::size_t i = 0; i < folder->files.size() && !stopped_; ++i) {
    std::shared_ptr<const InstalledProfile> profile = folder->files[i].profile;
    if (!isUpToDate(directory, folder->files[i])) {
      if (!changed) {
        folder = changed = std::make_shared<KnownFolder>(*folder);
      }
      profile = readFile(directory, prefix + folder->files[i].name, changed->files[i]);
    }
    if (profile) {
      stopped_ = !visit_(*profile);
    } else if (visit_other_) {
      visit_other_(prefix + folder->files[i].name);
    }
  }
  met_.push_back(folder);
  after_.add(path, std::move(folder));
}

/// Reads the file, and returns its profile also when `file` does not keep it.
std::shared_ptr<const InstalledProfile> IccWalk::readFile(int directory, const std::string& path,
                                                          KnownFile& file) const {
  file = {.name = std::move(file.name), .is_regular = file.is_regular};
  if (!file.is_regular) {
    return nullptr;
  }
  const FileTime opened = fileSystemTime();
  const RegularFile open_file(directory, file.name.c_str());
  if (!open_file) {
    return nullptr;
  }
  file.identity = open_file.identity();
  file.is_kept = laterChangesShow(file.identity, opened);
  const auto read = IccProfile::of(open_file);
  if (!read) {
    return nullptr;
  }
  const auto profile = std::make_shared<InstalledProfile>();
  profile->profile_class = read->deviceClass();
  profile->path = path;
  if (const auto description = read->find(iccSignature("desc"))) {
    profile->description = readIccText(*read, *description, language_);
  }
  file.is_kept = file.is_kept && profile->description.value_or("").size() <= kMaxDescription;
  if (file.is_kept) {
    profile->slot = std::make_shared<CacheSlot>();
    file.profile = profile;
  }
  return profile;
}

}  // namespace platform::desktop
