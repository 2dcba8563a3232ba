// The walk over folders of profiles, for the listing and for the doctor, and what one walk leaves for the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"
#include "desktop/model/language.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {

/// A file that is named like a profile, in the state in which it was read.
struct KnownFile {
  std::string name;
  bool is_regular = true;
  FileIdentity identity;
  std::shared_ptr<const InstalledProfile> profile;  ///< null for a file that is not a profile
  /// False when the file must be read at every walk: a later change may not show, or its description is too long.
  bool is_kept = false;
};

/// A folder, in the state in which it was read. Names are in byte order.
struct KnownFolder {
  FileIdentity identity;
  bool is_kept = false;  ///< false when a later change of the folder may not show
  std::vector<KnownFile> files;
  std::vector<std::string> folders;
  std::vector<std::string> links;  ///< symbolic links of any kind
};

/// Folders by path. A file behind a link is a folder with that file alone, which has its whole path for a name.
class PLATFORM_API KnownFolders {
 public:
  static constexpr std::size_t kMaxFiles = 32768;

  /// Null when the path is unknown.
  std::shared_ptr<const KnownFolder> find(const std::string& path) const;
  /// Leaves the folder out when there would be more than kMaxFiles files in all.
  void add(const std::string& path, std::shared_ptr<const KnownFolder> folder);

 private:
  std::map<std::string, std::shared_ptr<const KnownFolder>> folders_;
  std::size_t files_ = 0;
};

/// Whether every change after `now` shows in the identity of what had this identity at `now`, by the clock that file
/// systems take their times from. That clock ticks: two changes within one tick look alike.
PLATFORM_API bool laterChangesShow(const FileIdentity& identity, FileTime now);

/// One object belongs to one thread and serves one walk. See IccFolders::visit for the order, and for what is visited.
class IccWalk {
 public:
  /// A file that is named like a profile and is not one, by its path; it may be a pipe or lead nowhere.
  using OtherVisitor = std::function<void(const std::string& path)>;

  /// What is given by reference must outlive the walk. `visit_other` may be null.
  IccWalk(const Language& language, const KnownFolders& before, const InstalledProfileVisitor& visit,
          OtherVisitor visit_other = nullptr)
      : language_(language), before_(before), visit_(visit), visit_other_(std::move(visit_other)) {}

  /// Returns what the next walk need not read; nothing when the visitor has ended this one.
  std::optional<KnownFolders> run(const std::vector<std::string>& folders);

 private:
  using Node = std::pair<std::uint64_t, std::uint64_t>;  ///< device and inode

  void walkTree(const std::string& root);
  void walkFolder(const std::string& path, std::vector<std::string>& waiting);
  void followLink(const std::string& path);
  void visitFiles(std::shared_ptr<const KnownFolder> folder, int directory, const std::string& path,
                  const std::string& prefix);
  std::shared_ptr<const InstalledProfile> readFile(int directory, const std::string& path, KnownFile& file) const;

  const Language& language_;
  const KnownFolders& before_;
  const InstalledProfileVisitor& visit_;
  const OtherVisitor visit_other_;
  KnownFolders after_;
  bool stopped_ = false;
  std::set<Node> directories_;
  std::vector<std::shared_ptr<const KnownFolder>> met_;
  std::set<Node> files_;            ///< those of met_, gathered only when there are links
  std::size_t gathered_ = 0;        ///< how many of met_ have been gathered
  std::vector<std::string> links_;  ///< in the order in which they were met
};

}  // namespace platform::desktop
