// What has been read from profile files, kept until the files change. Any thread may call any function, several at
// once.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "desktop/desktop.h"
#include "desktop/export.h"
#include "desktop/file_identity.h"

namespace platform::desktop {

class PLATFORM_API IccCache {
 public:
  /// What a file holds; null for a file that is no profile.
  using Content = std::shared_ptr<const InstalledProfile>;

  /// No more files than this are remembered, and no profile whose description is longer than this many bytes.
  static constexpr std::size_t kMaxFiles = 32768;
  static constexpr std::size_t kMaxDescription = 4096;

  /// The number of a new walk over the files; later walks have greater numbers.
  std::uint64_t beginWalk();
  /// Forgets what only walks before this one have met.
  void endWalk(std::uint64_t walk);

  /// True when something is remembered for the path, be it up to date or not.
  bool knows(const std::string& path);
  /// Nothing unless the file is remembered in this very state.
  std::optional<Content> find(std::uint64_t walk, const std::string& path, const FileIdentity& identity);
  /// Remembers the content when that is of use, and then gives it a place for what is made of it
  /// (InstalledProfile::kept). `now` is the time just before the file was opened, by the clock that file systems take
  /// their times from.
  void store(std::uint64_t walk, const std::string& path, const FileIdentity& identity, FileTime now,
             const std::shared_ptr<InstalledProfile>& content);

 private:
  struct Slot {
    FileIdentity identity;
    Content content;
    std::uint64_t last_walk = 0;
  };

  std::mutex mutex_;
  std::uint64_t walks_ = 0;
  std::unordered_map<std::string, Slot> slots_;
};

}  // namespace platform::desktop
