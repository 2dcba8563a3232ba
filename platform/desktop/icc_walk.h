// One walk over folders of profiles. One object belongs to one thread and serves one walk.
#pragma once

#include <dirent.h>

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "desktop/desktop.h"
#include "desktop/icc_cache.h"
#include "desktop/icc_language.h"

namespace platform::desktop {

class IccWalk {
 public:
  /// What is given by reference must outlive the walk.
  IccWalk(const Language& language, IccCache& cache, const InstalledProfileVisitor& visit)
      : language_(language), cache_(cache), visit_(visit) {}

  /// See IccFolders::visit.
  void run(const std::vector<std::string>& folders);

 private:
  using Node = std::pair<std::uint64_t, std::uint64_t>;  ///< device and inode
  struct Contents;

  void walkTree(const std::string& root);
  Contents readDirectory(DIR* directory, const std::string& path);
  void visitFiles(int directory, const std::string& path, const std::vector<std::string>& names);
  void visitFile(int directory, const char* name, const std::string& path);
  void followLink(const std::string& path);
  IccCache::Content contentOf(int directory, const char* name, const std::string& path);
  IccCache::Content readContent(int directory, const char* name, const std::string& path);

  const Language& language_;
  IccCache& cache_;
  const InstalledProfileVisitor& visit_;
  std::uint64_t number_ = 0;
  bool stopped_ = false;  ///< the visitor has had enough
  std::set<Node> directories_;
  std::vector<Node> files_;    ///< every file that was met
  std::set<Node> file_nodes_;  ///< the first files_looked_up_ of them, filled only when there are links
  std::size_t files_looked_up_ = 0;
  std::vector<std::string> links_;  ///< in the order in which they were met
};

}  // namespace platform::desktop
