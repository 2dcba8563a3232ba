#include "desktop/icc/icc_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace platform::desktop {
namespace {

/// A file that turns into a pipe or a terminal between the look at it and the opening must not hold anybody up either.
constexpr int kOpenFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

bool isUsable(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_size >= 0 &&
         static_cast<std::uint64_t>(status.st_size) <= kMaxIccFileSize;
}

}  // namespace

std::unique_ptr<IccFile> IccFile::open(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !isUsable(status)) {
    return nullptr;
  }
  return adopt(::open(path.c_str(), kOpenFlags));
}

std::unique_ptr<IccFile> IccFile::openAt(int directory, const char* name) {
  return adopt(::openat(directory, name, kOpenFlags));
}

std::unique_ptr<IccFile> IccFile::adopt(int descriptor) {
  if (descriptor < 0) {
    return nullptr;
  }
  std::unique_ptr<IccFile> file(new IccFile(descriptor));
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !isUsable(status)) {
    return nullptr;
  }
  file->identity_ = identityOf(status);
  const std::size_t head_size = std::min<std::uint64_t>(file->head_.size(), file->size());
  if (!file->readFromFile(0, file->head_.data(), head_size)) {
    return nullptr;
  }
  file->head_size_ = head_size;
  return file;
}

IccFile::~IccFile() { ::close(descriptor_); }

bool IccFile::read(std::uint64_t offset, void* target, std::size_t count) const {
  if (offset > size() || count > size() - offset) {
    return false;
  }
  if (offset + count <= head_size_) {
    std::memcpy(target, head_.data() + offset, count);
    return true;
  }
  return readFromFile(offset, target, count);
}

bool IccFile::readFromFile(std::uint64_t offset, void* target, std::size_t count) const {
  auto* next = static_cast<std::uint8_t*>(target);
  while (count > 0) {
    const ssize_t got = pread(descriptor_, next, count, static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      return false;
    }
    next += got;
    offset += static_cast<std::uint64_t>(got);
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

}  // namespace platform::desktop
