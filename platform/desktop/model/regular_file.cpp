#include "desktop/model/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace platform::desktop {
namespace {

/// Without blocking: the file may become a pipe or a terminal between the look at it and the opening.
constexpr int kOpenFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

bool isRegular(const struct stat& status) {
  errno = 0;
  return S_ISREG(status.st_mode);
}

}  // namespace

FileIdentity identityOf(const struct stat& status) {
  return {.device = status.st_dev,
          .inode = status.st_ino,
          .size = static_cast<std::uint64_t>(status.st_size),
          .modified = {status.st_mtim.tv_sec, status.st_mtim.tv_nsec},
          .changed = {status.st_ctim.tv_sec, status.st_ctim.tv_nsec}};
}

RegularFile::RegularFile(const std::string& path) {
  struct stat status {};
  // A look first: opening some devices has effects.
  if (stat(path.c_str(), &status) == 0 && isRegular(status)) {
    adopt(open(path.c_str(), kOpenFlags));
  }
}

RegularFile::RegularFile(int directory, const char* name) { adopt(openat(directory, name, kOpenFlags)); }

void RegularFile::adopt(int descriptor) {
  struct stat status {};
  if (descriptor >= 0 && fstat(descriptor, &status) == 0 && isRegular(status)) {
    descriptor_ = descriptor;
    identity_ = identityOf(status);
  } else if (descriptor >= 0) {
    const int reason = errno;
    close(descriptor);
    errno = reason;
  }
}

RegularFile::~RegularFile() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

ssize_t RegularFile::read(std::uint64_t offset, void* target, std::size_t count) const {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t more =
        pread(descriptor_, static_cast<std::uint8_t*>(target) + done, count - done, static_cast<off_t>(offset + done));
    if (more < 0 && errno != EINTR) {
      return -1;
    }
    if (more == 0) {
      break;
    }
    done += more > 0 ? static_cast<std::size_t>(more) : 0;
  }
  return static_cast<ssize_t>(done);
}

}  // namespace platform::desktop
