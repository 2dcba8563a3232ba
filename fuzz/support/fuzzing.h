// What the fuzzers share: their assertion, and a file for their input. One thread.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace fuzz {

/// Aborts unless the claim holds; libFuzzer then reports a finding.
inline void require(bool holds, const char* claim) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
  }
}

/// A regular file in memory, rewritten for each execution.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("input", MFD_CLOEXEC)) {
    require(descriptor_ >= 0, "the system has files in memory");
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  /// Absolute; valid in this process.
  const std::string& path() const { return path_; }
  void write(std::string_view content) const {
    const bool is_written = ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, content.data(), content.size(), 0) ==
                                                                  static_cast<ssize_t>(content.size());
    require(is_written, "a file in memory can be written");
  }

 private:
  int descriptor_;
  std::string path_ = "/proc/self/fd/" + std::to_string(descriptor_);
};

}  // namespace fuzz
