#include "desktop/icc/icc_folders.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "desktop/icc/icc_cache.h"
#include "desktop/icc/icc_walk.h"

namespace platform::desktop {
namespace {

/// Empty when the variable is unset or is no absolute path, which it must be to count.
std::string absolutePath(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value == '/' ? value : "";
}

class FolderList {
 public:
  /// Adds `base` and `rest` as one path, unless `base` is not absolute or the path is there already.
  void add(std::string_view base, std::string_view rest) {
    while (base.size() > 1 && base.back() == '/') {
      base.remove_suffix(1);
    }
    if (base.empty() || base.front() != '/') {
      return;
    }
    std::string folder = std::string(base == "/" ? "" : base) + std::string(rest);
    if (std::find(folders_.begin(), folders_.end(), folder) == folders_.end()) {
      folders_.push_back(std::move(folder));
    }
  }

  void addDataDirectories(std::string_view directories) {
    while (!directories.empty()) {
      const std::size_t end = std::min(directories.find(':'), directories.size());
      add(directories.substr(0, end), "/color/icc");
      directories.remove_prefix(std::min(end + 1, directories.size()));
    }
  }

  std::vector<std::string> take() { return std::move(folders_); }

 private:
  std::vector<std::string> folders_;
};

}  // namespace

std::vector<std::string> installedProfileFolders() {
  FolderList folders;
  folders.add("/usr/share", "/color/icc");
  folders.add("/usr/local/share", "/color/icc");
  const char* const data_directories = std::getenv("XDG_DATA_DIRS");
  folders.addDataDirectories(data_directories != nullptr ? data_directories : "");
  folders.add("/var/lib", "/color/icc");
  folders.add("/var/lib", "/colord/icc");

  const std::string home = absolutePath("HOME");
  std::string data_home = absolutePath("XDG_DATA_HOME");
  if (data_home.empty() && !home.empty()) {
    data_home = home + "/.local/share";
  }
  folders.add(data_home, "/icc");
  folders.add(data_home, "/color/icc");
  folders.add(home, "/.color/icc");
  return folders.take();
}

IccFolders::IccFolders(std::vector<std::string> folders) : folders_(std::move(folders)) {}

IccFolders::~IccFolders() = default;

std::shared_ptr<IccCache> IccFolders::cacheFor(const Language& language) {
  const std::lock_guard lock(mutex_);
  if (!cache_ || language_ != language) {
    cache_ = std::make_shared<IccCache>();
    language_ = language;
  }
  return cache_;
}

void IccFolders::visit(const InstalledProfileVisitor& visit) {
  const Language language = userLanguage();
  const std::shared_ptr<IccCache> cache = cacheFor(language);
  IccWalk(language, *cache, visit).run(folders_);
}

}  // namespace platform::desktop
