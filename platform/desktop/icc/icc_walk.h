// One walk over folders of profiles. One object belongs to one thread and serves one walk.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/icc/icc_cache.h"
#include "desktop/model/desktop.h"
#include "desktop/model/language.h"

namespace platform::desktop {

/// A folder as it is remembered, until something has to be changed in it: from then on, a changed one.
class FolderInUse {
 public:
  explicit FolderInUse(std::shared_ptr<const KnownFolder> known) : known_(std::move(known)) {}
  explicit FolderInUse(std::shared_ptr<KnownFolder> changed) : known_(changed), changed_(std::move(changed)) {}

  const std::shared_ptr<const KnownFolder>& get() const { return known_; }
  bool isChanged() const { return changed_ != nullptr; }
  /// To be changed before anybody else gets to see it.
  KnownFolder& change() {
    if (!changed_) {
      changed_ = std::make_shared<KnownFolder>(*known_);
      known_ = changed_;
    }
    return *changed_;
  }

 private:
  std::shared_ptr<const KnownFolder> known_;
  std::shared_ptr<KnownFolder> changed_;
};

class IccWalk {
 public:
  /// What is given by reference must outlive the walk.
  IccWalk(const Language& language, IccCache& cache, const InstalledProfileVisitor& visit)
      : language_(language), cache_(cache), visit_(visit) {}

  /// See IccFolders::visit. Once.
  void run(const std::vector<std::string>& folders);

 private:
  using Node = std::pair<std::uint64_t, std::uint64_t>;  ///< device and inode

  void walkTree(const std::string& root);
  void walkFolder(const std::string& path, std::vector<std::string>& waiting);
  void followLink(const std::string& path);
  void visitFiles(FolderInUse folder, int directory, const std::string& path, const std::string& prefix);
  std::shared_ptr<const InstalledProfile> readFile(int directory, const std::string& path, KnownFile& file) const;

  const Language& language_;
  IccCache& cache_;
  const InstalledProfileVisitor& visit_;
  std::uint64_t number_ = 0;
  bool stopped_ = false;  ///< the visitor has had enough
  std::set<Node> directories_;
  std::vector<std::shared_ptr<const KnownFolder>> met_;
  std::set<Node> files_;            ///< those of met_, gathered only when there are links
  std::size_t gathered_ = 0;        ///< how many of met_ have been gathered
  std::vector<std::string> links_;  ///< in the order in which they were met
};

}  // namespace platform::desktop
