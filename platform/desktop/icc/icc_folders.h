// The ICC profiles that are installed on this computer, in the folders that desktops keep profiles in.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "desktop/icc/icc_walk.h"
#include "desktop/model/desktop.h"
#include "desktop/model/export.h"
#include "desktop/model/language.h"

namespace platform::desktop {

/// The folders of this computer and this user, as the environment names them at the moment (XDG_DATA_DIRS,
/// XDG_DATA_HOME, HOME), each once: the system's own, the computer's own, the rest of the data directories', colord's,
/// and the user's. Sources: the XDG base directory rules, version 0.8; colord's cd-main.c and cd-session's user
/// folders.
PLATFORM_API std::vector<std::string> installedProfileFolders();

/// Any thread may call any function, several at once.
class PLATFORM_API IccFolders {
 public:
  explicit IccFolders(std::vector<std::string> folders) : folders_(std::move(folders)) {}
  IccFolders(const IccFolders&) = delete;
  IccFolders& operator=(const IccFolders&) = delete;

  /// Visits every profile in the folders and their subfolders: regular files named *.icc or *.icm, in any case, that
  /// are readable ICC profiles.
  ///
  /// Order: folder by folder, in each the files by name (byte by byte), then the subfolders by name. Symbolic links
  /// come last, and a link to what has been visited is ignored: a file is listed once however many links lead to it,
  /// under its own path when that lies in the folders, and a loop ends.
  ///
  /// A profile's description is in the user's language. An entry keeps its slot while its file is unchanged.
  void visit(const InstalledProfileVisitor& visit);

 private:
  const std::vector<std::string> folders_;
  std::mutex mutex_;
  Language language_;  ///< of the descriptions in known_
  std::shared_ptr<const KnownFolders> known_ = std::make_shared<KnownFolders>();
};

}  // namespace platform::desktop
