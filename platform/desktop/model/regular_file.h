// A regular file, opened so that no kind of file can block or crash the caller. A pipe, device, socket or directory is
// not opened. The bytes are read with pread, never mapped: a file that shrinks gives a short read and not a signal. Any
// thread may call the const functions, several at once.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "desktop/model/export.h"

struct stat;

namespace platform::desktop {

/// Seconds since 1970 and nanoseconds, by the system's real-time clock.
using FileTime = std::pair<std::int64_t, std::int64_t>;

/// Which file a path leads to, and in which state the file is.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  FileTime modified;
  FileTime changed;
  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

PLATFORM_API FileIdentity identityOf(const struct stat& status);

class PLATFORM_API RegularFile {
 public:
  /// Follows symbolic links. Where the file cannot be opened, errno gives the reason; it is 0 for a file of another
  /// kind.
  explicit RegularFile(const std::string& path);
  /// The same for a name in an open directory (or AT_FDCWD) that the caller has seen to be a regular file.
  RegularFile(int directory, const char* name);
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  explicit operator bool() const { return descriptor_ >= 0; }
  /// As it was when the file was opened.
  const FileIdentity& identity() const { return identity_; }
  /// In bytes, when the file was opened.
  std::uint64_t size() const { return identity_.size; }

  /// Reads up to `count` bytes from `offset` on. Returns how many there are, or -1 with errno when reading fails.
  ssize_t read(std::uint64_t offset, void* target, std::size_t count) const;

 private:
  void adopt(int descriptor);

  int descriptor_ = -1;
  FileIdentity identity_;
};

}  // namespace platform::desktop
