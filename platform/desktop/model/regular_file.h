// A regular file, opened by its path in a way that cannot hold anybody up: what is a pipe, device, socket or directory
// is not opened, and what becomes one in between is not waited for. One object belongs to one thread.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "desktop/model/export.h"

namespace platform::desktop {

class PLATFORM_API RegularFile {
 public:
  /// Follows symbolic links. Where the file cannot be had, errno says why; it is 0 for what is no regular file.
  explicit RegularFile(const std::string& path);
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  explicit operator bool() const { return descriptor_ >= 0; }
  /// In bytes, when it was opened.
  off_t size() const { return size_; }

  /// Reads on, up to `count` bytes: as many as there are, or -1 with errno when it fails.
  ssize_t read(void* target, std::size_t count) const;

 private:
  int descriptor_ = -1;
  off_t size_ = 0;
};

}  // namespace platform::desktop
