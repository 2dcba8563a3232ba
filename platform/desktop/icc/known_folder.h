// Reading what a folder contains. Any thread may call.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "desktop/icc/icc_cache.h"

namespace platform::desktop {

/// A directory that is open for reading, or none.
class OpenFolder {
 public:
  /// Follows symbolic links.
  explicit OpenFolder(const std::string& path);
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;
  ~OpenFolder();

  explicit operator bool() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }
  /// As it was when the directory was opened.
  const FileIdentity& identity() const { return identity_; }

  /// What the folder contains now. Files are those of `before`, as far as they were in it; the others are not read yet.
  std::shared_ptr<KnownFolder> read(const KnownFolder* before) const;

 private:
  int descriptor_;
  FileTime opened_;
  FileIdentity identity_;
};

/// Whether a file's name ends in .icc or .icm, in any case.
bool isProfileName(std::string_view name);

/// The time by the clock that file systems take their times from.
FileTime fileSystemTime();

}  // namespace platform::desktop
