#include "fuzz/support/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/support/finding.h"

namespace fuzz {

MemoryFile::MemoryFile()
    : descriptor_(memfd_create("input", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  require(descriptor_ >= 0, "the system has files in memory");
}

MemoryFile::~MemoryFile() { close(descriptor_); }

void MemoryFile::write(std::string_view content) const {
  const bool is_written = ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, content.data(), content.size(), 0) ==
                                                                static_cast<ssize_t>(content.size());
  require(is_written, "a file in memory can be written");
}

}  // namespace fuzz
