#include "desktop/icc/known_folder.h"

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

/// What a directory holds that matters, by name.
struct Names {
  std::vector<std::string> files;
  std::vector<std::string> folders;
  std::vector<std::string> links;

  void add(int directory, const dirent& entry) {
    const std::string_view name = entry.d_name;
    if (name == "." || name == "..") {
      return;
    }
    switch (typeOf(directory, entry)) {
      case DT_REG:
        if (isProfileName(name)) {
          files.emplace_back(name);
        }
        break;
      case DT_DIR:
        folders.emplace_back(name);
        break;
      case DT_LNK:
        links.emplace_back(name);
        break;
      default:
        break;
    }
  }

  void sort() {
    for (std::vector<std::string>* const names : {&files, &folders, &links}) {
      std::sort(names->begin(), names->end());
    }
  }
};

/// Files that are not read yet, but for those of `before`. Both are in order of the names. The names are copied one
/// after the other, which places them in memory in the order in which they will be used.
std::vector<KnownFile> filesOf(const std::vector<std::string>& names, const KnownFolder* before) {
  std::vector<KnownFile> files;
  files.reserve(names.size());
  const std::vector<KnownFile> none;
  const std::vector<KnownFile>& known = before != nullptr ? before->files : none;
  auto next = known.begin();
  for (const std::string& name : names) {
    while (next != known.end() && next->name < name) {
      ++next;
    }
    if (next != known.end() && next->name == name) {
      files.push_back(*next);
    } else {
      files.emplace_back().name = name;
    }
  }
  return files;
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
  Names names;
  const Directory directory = directoryOf(descriptor_);
  while (const dirent* const entry = directory ? readdir(directory.get()) : nullptr) {
    names.add(descriptor_, *entry);
  }
  names.sort();
  folder->files = filesOf(names.files, before);
  folder->folders = std::move(names.folders);
  folder->links = std::move(names.links);
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
