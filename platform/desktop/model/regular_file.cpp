#include "desktop/model/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace platform::desktop {
namespace {

bool isRegular(const struct stat& status) {
  errno = 0;
  return S_ISREG(status.st_mode);
}

}  // namespace

RegularFile::RegularFile(const std::string& path) {
  struct stat status {};
  // A look first: some devices do things when they are merely opened.
  if (stat(path.c_str(), &status) != 0 || !isRegular(status)) {
    return;
  }
  const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) {
    return;
  }
  if (fstat(descriptor, &status) != 0 || !isRegular(status)) {
    const int reason = errno;
    close(descriptor);
    errno = reason;
    return;
  }
  descriptor_ = descriptor;
  size_ = status.st_size;
}

RegularFile::~RegularFile() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

ssize_t RegularFile::read(void* target, std::size_t count) const {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t more = ::read(descriptor_, static_cast<std::uint8_t*>(target) + done, count - done);
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
