// What has been read from folders of profiles, kept until the folders or the files in them change. Any thread may call
// any function, several at once.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"
#include "desktop/model/regular_file.h"

namespace platform::desktop {

/// A file, in the state in which it was read.
struct KnownFile {
  std::string name;
  FileIdentity identity;
  std::shared_ptr<const InstalledProfile> content;  ///< null for a file that is no profile
  /// False when the file must be read anew each time: a later change may not show, or it is not worth the memory.
  bool is_kept = false;
};

/// A folder, in the state in which it was read. Names are in byte order.
struct KnownFolder {
  FileIdentity identity;
  bool is_kept = false;          ///< false when a later change of what the folder contains may not show
  std::vector<KnownFile> files;  ///< those that are named like profiles
  std::vector<std::string> folders;
  std::vector<std::string> links;  ///< symbolic links to whatever
};

/// Whether every change after `now` shows in the identity of what had this identity at `now`, by the clock that file
/// systems take their times from. That clock ticks: two changes within one tick look alike.
PLATFORM_API bool laterChangesShow(const FileIdentity& identity, FileTime now);

class PLATFORM_API IccCache {
 public:
  /// No more files than this are remembered, and no profile whose description is longer than this many bytes.
  static constexpr std::size_t kMaxFiles = 32768;
  static constexpr std::size_t kMaxDescription = 4096;

  /// The number of a new walk; later walks have greater numbers.
  std::uint64_t beginWalk();
  /// Forgets what only walks before this one have met.
  void endWalk(std::uint64_t walk);

  /// Null when nothing is remembered for the path. A file is remembered as a folder that contains it alone.
  std::shared_ptr<const KnownFolder> find(std::uint64_t walk, const std::string& path);
  void store(std::uint64_t walk, const std::string& path, std::shared_ptr<const KnownFolder> folder);

 private:
  struct Slot {
    std::shared_ptr<const KnownFolder> folder;
    std::uint64_t last_walk = 0;
  };

  std::mutex mutex_;
  std::uint64_t walks_ = 0;
  std::size_t files_ = 0;  ///< in all the folders together
  std::map<std::string, Slot> slots_;
};

}  // namespace platform::desktop
