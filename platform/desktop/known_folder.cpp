#include "desktop/known_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>
#include <string>

namespace platform::desktop {
namespace {

using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;

/// Reads through a descriptor of its own, so that the given one stays open.
Directory directoryOf(int descriptor) {
  const int own = openat(descriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const directory = own < 0 ? nullptr : fdopendir(own);
  if (directory == nullptr && own >= 0) {
    close(own);
  }
  return {directory, closedir};
}

unsigned char typeOf(int directory, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) {
    return entry.d_type;
  }
  struct stat status {};
  if (fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return DT_UNKNOWN;
  }
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

void addEntry(KnownFolder& folder, int directory, const dirent& entry) {
  const std::string_view name = entry.d_name;
  if (name == "." || name == "..") {
    return;
  }
  switch (typeOf(directory, entry)) {
    case DT_REG:
      if (isProfileName(name)) {
        folder.files.emplace_back().name = name;
      }
      break;
    case DT_DIR:
      folder.folders.emplace_back(name);
      break;
    case DT_LNK:
      folder.links.emplace_back(name);
      break;
    default:
      break;
  }
}

/// Both are in order of the names.
void takeOver(const std::vector<KnownFile>& before, std::vector<KnownFile>& files) {
  auto old = before.begin();
  for (KnownFile& file : files) {
    while (old != before.end() && old->name < file.name) {
      ++old;
    }
    if (old != before.end() && old->name == file.name) {
      file = *old;
    }
  }
}

}  // namespace

OpenFolder::OpenFolder(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC)), opened_(fileSystemTime()) {
  struct stat status {};
  if (descriptor_ >= 0 && fstat(descriptor_, &status) == 0) {
    identity_ = identityOf(status);
  }
}

OpenFolder::~OpenFolder() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

std::shared_ptr<KnownFolder> OpenFolder::read(const KnownFolder* before) const {
  auto folder = std::make_shared<KnownFolder>();
  folder->identity = identity_;
  folder->is_kept = laterChangesShow(identity_, opened_);
  const Directory directory = directoryOf(descriptor_);
  while (const dirent* const entry = directory ? readdir(directory.get()) : nullptr) {
    addEntry(*folder, descriptor_, *entry);
  }
  std::sort(folder->files.begin(), folder->files.end(),
            [](const KnownFile& first, const KnownFile& second) { return first.name < second.name; });
  std::sort(folder->folders.begin(), folder->folders.end());
  std::sort(folder->links.begin(), folder->links.end());
  if (before != nullptr) {
    takeOver(before->files, folder->files);
  }
  return folder;
}

bool isProfileName(std::string_view name) {
  if (name.size() < 4) {
    return false;
  }
  std::array<char, 4> ending;
  std::transform(name.end() - 4, name.end(), ending.begin(),
                 [](char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; });
  const std::string_view extension(ending.data(), ending.size());
  return extension == ".icc" || extension == ".icm";
}

FileTime fileSystemTime() {
  timespec time{};
  clock_gettime(CLOCK_REALTIME_COARSE, &time);
  return {time.tv_sec, time.tv_nsec};
}

}  // namespace platform::desktop
