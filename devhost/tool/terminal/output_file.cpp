#include "devhost/tool/terminal/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

namespace devhost::tool {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the user's mask
constexpr mode_t kPermissions = 07777;

/// A temporary file beside the target, removed unless it was moved into the target's place.
class NewFile {
 public:
  explicit NewFile(const std::string& target) : path_(target + ".new" + std::to_string(getpid())) {
    descriptor_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kNewFileMode);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    if (descriptor_ >= 0) {
      close(descriptor_);
      unlink(path_.c_str());
    }
  }

  explicit operator bool() const { return descriptor_ >= 0; }

  bool setMode(mode_t mode) const { return fchmod(descriptor_, mode) == 0; }

  bool write(const std::string& content) const {
    std::size_t written = 0;
    while (written < content.size()) {
      const ssize_t count = ::write(descriptor_, content.data() + written, content.size() - written);
      if (count < 0 && errno != EINTR) {
        return false;
      }
      written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
  }

  bool moveTo(const std::string& target) {
    // Some file systems report a full disk only here.
    const bool is_closed = close(std::exchange(descriptor_, -1)) == 0;
    if (is_closed && rename(path_.c_str(), target.c_str()) == 0) {
      return true;
    }
    const int reason = errno;
    unlink(path_.c_str());
    errno = reason;
    return false;
  }

 private:
  std::string path_;
  int descriptor_ = -1;
};

[[noreturn]] void fail(const std::string& path) {
  throw OutputError(path + ": cannot be written: " + std::strerror(errno));
}

/// `path` with links followed; `path` itself when there is no such file.
std::string followed(const std::string& path) {
  char target[PATH_MAX];
  return realpath(path.c_str(), target) == nullptr ? path : std::string(target);
}

/// The permissions of the regular file at `path`; nothing when there is none.
std::optional<mode_t> modeOfFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    struct stat link {};
    if (lstat(path.c_str(), &link) == 0) {
      throw OutputError(path + ": not written: it is a dangling link");
    }
    return std::nullopt;
  }
  if (!S_ISREG(status.st_mode)) {
    throw OutputError(path + ": not written: it is not a regular file (\"-o -\" writes to the standard output)");
  }
  if (access(path.c_str(), W_OK) != 0) {
    fail(path);
  }
  return status.st_mode & kPermissions;
}

}  // namespace

void writeFile(const std::string& path, const std::string& content) {
  const std::optional<mode_t> mode = modeOfFile(path);
  const std::string target = followed(path);
  NewFile file(target);
  if (!file || (mode && !file.setMode(*mode)) || !file.write(content) || !file.moveTo(target)) {
    fail(path);
  }
}

}  // namespace devhost::tool
