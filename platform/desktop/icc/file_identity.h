// Which file a path leads to, and in which state the file is. Any thread may call.
#pragma once

#include <sys/stat.h>

#include <cstdint>

namespace platform::desktop {

/// A moment of the system's real-time clock, since 1970.
struct FileTime {
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;
  friend bool operator==(const FileTime&, const FileTime&) = default;
  friend bool operator<(const FileTime& first, const FileTime& second) {
    return first.seconds < second.seconds ||
           (first.seconds == second.seconds && first.nanoseconds < second.nanoseconds);
  }
};

/// Tells one state of one file from another.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  FileTime modified;
  FileTime changed;
  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

inline FileIdentity identityOf(const struct stat& status) {
  FileIdentity identity;
  identity.device = status.st_dev;
  identity.inode = status.st_ino;
  identity.size = static_cast<std::uint64_t>(status.st_size);
  identity.modified = {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  identity.changed = {status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
  return identity;
}

}  // namespace platform::desktop
