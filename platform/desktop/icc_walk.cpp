#include "desktop/icc_walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>
#include <string_view>

#include "desktop/icc_file.h"
#include "desktop/icc_profile.h"
#include "desktop/icc_text.h"

namespace platform::desktop {

/// What a directory holds that matters to the walk: names, in byte order.
struct IccWalk::Contents {
  std::vector<std::string> files;
  std::vector<std::string> directories;
};

namespace {

using Directory = std::unique_ptr<DIR, int (*)(DIR*)>;

Directory openDirectory(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
  DIR* const directory = descriptor < 0 ? nullptr : fdopendir(descriptor);
  if (directory == nullptr && descriptor >= 0) {
    close(descriptor);
  }
  return {directory, closedir};
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

/// By the clock that file systems take their times from.
FileTime now() {
  timespec time{};
  clock_gettime(CLOCK_REALTIME_COARSE, &time);
  return {time.tv_sec, time.tv_nsec};
}

}  // namespace

void IccWalk::run(const std::vector<std::string>& folders) {
  number_ = cache_.beginWalk();
  for (const std::string& folder : folders) {
    walkTree(folder);
  }
  for (std::size_t i = 0; i < links_.size() && !stopped_; ++i) {
    followLink(std::string(links_[i]));  // its own copy: following may add links
  }
  if (!stopped_) {
    cache_.endWalk(number_);
  }
}

void IccWalk::walkTree(const std::string& root) {
  std::vector<std::string> waiting = {root};
  while (!waiting.empty() && !stopped_) {
    const std::string path = std::move(waiting.back());
    waiting.pop_back();
    const Directory directory = openDirectory(path);
    struct stat status {};
    if (!directory || fstat(dirfd(directory.get()), &status) != 0 ||
        !directories_.emplace(status.st_dev, status.st_ino).second) {
      continue;
    }
    Contents contents = readDirectory(directory.get(), path);
    visitFiles(dirfd(directory.get()), path, contents.files);
    std::for_each(contents.directories.rbegin(), contents.directories.rend(),
                  [&](const std::string& name) { waiting.push_back(path + '/' + name); });
  }
}

IccWalk::Contents IccWalk::readDirectory(DIR* directory, const std::string& path) {
  Contents contents;
  while (const dirent* const entry = readdir(directory)) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") {
      continue;
    }
    switch (typeOf(dirfd(directory), *entry)) {
      case DT_REG:
        if (isProfileName(name)) {
          contents.files.emplace_back(name);
        }
        break;
      case DT_DIR:
        contents.directories.emplace_back(name);
        break;
      case DT_LNK:
        links_.push_back(path + '/' + std::string(name));
        break;
      default:
        break;
    }
  }
  std::sort(contents.files.begin(), contents.files.end());
  std::sort(contents.directories.begin(), contents.directories.end());
  return contents;
}

void IccWalk::visitFiles(int directory, const std::string& path, const std::vector<std::string>& names) {
  std::string file_path = path + '/';
  const std::size_t base = file_path.size();
  for (const std::string& name : names) {
    if (stopped_) {
      return;
    }
    file_path.resize(base);
    file_path += name;
    visitFile(directory, name.c_str(), file_path);
  }
}

void IccWalk::followLink(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return;
  }
  if (S_ISDIR(status.st_mode)) {
    walkTree(path);
    return;
  }
  for (; files_looked_up_ < files_.size(); ++files_looked_up_) {
    file_nodes_.insert(files_[files_looked_up_]);
  }
  if (S_ISREG(status.st_mode) && isProfileName(path) && !file_nodes_.contains({status.st_dev, status.st_ino})) {
    visitFile(AT_FDCWD, path.c_str(), path);
  }
}

void IccWalk::visitFile(int directory, const char* name, const std::string& path) {
  const IccCache::Content content = contentOf(directory, name, path);
  if (content && !visit_(*content)) {
    stopped_ = true;
  }
}

IccCache::Content IccWalk::contentOf(int directory, const char* name, const std::string& path) {
  struct stat status {};
  if (cache_.knows(path) && fstatat(directory, name, &status, 0) == 0) {
    const FileIdentity identity = identityOf(status);
    if (const auto known = cache_.find(number_, path, identity)) {
      files_.emplace_back(identity.device, identity.inode);
      return *known;
    }
  }
  return readContent(directory, name, path);
}

IccCache::Content IccWalk::readContent(int directory, const char* name, const std::string& path) {
  const FileTime opened = now();
  const std::unique_ptr<IccFile> file = IccFile::openAt(directory, name);
  if (!file) {
    return nullptr;
  }
  files_.emplace_back(file->identity().device, file->identity().inode);
  std::shared_ptr<InstalledProfile> content;
  if (const auto profile = IccProfile::parse(*file)) {
    content = std::make_shared<InstalledProfile>();
    content->profile_class = profile->deviceClass();
    content->path = path;
    if (const auto description = profile->find(iccSignature("desc"))) {
      content->description = readIccText(*file, *description, language_);
    }
  }
  cache_.store(number_, path, file->identity(), opened, content);
  return content;
}

}  // namespace platform::desktop
