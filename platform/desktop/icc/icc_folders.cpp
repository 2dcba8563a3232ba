#include "desktop/icc/icc_folders.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "desktop/icc/icc_walk.h"

namespace platform::desktop {
namespace {

/// Empty when the variable is unset or is not an absolute path.
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

void IccFolders::visit(const InstalledProfileVisitor& visit) {
  const Language language = userLanguage();
  std::shared_ptr<const KnownFolders> before;
  {
    const std::lock_guard lock(mutex_);
    if (language_ != language) {
      known_ = std::make_shared<KnownFolders>();
      language_ = language;
    }
    before = known_;
  }
  auto after = IccWalk(language, *before, visit).run(folders_);
  const std::lock_guard lock(mutex_);
  if (after && language_ == language) {
    known_ = std::make_shared<KnownFolders>(*std::move(after));
  }
}

}  // namespace platform::desktop
