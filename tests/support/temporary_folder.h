// A test's own folder, removed with its content, and checks of file permissions. Objects belong to one thread.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace support {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "ostrevin-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("no temporary folder");
    }
    path_ = std::filesystem::canonical(name).string();
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& path() const { return path_; }
  std::string path(std::string_view name) const { return path_ + '/' + std::string(name); }

  /// Creates missing folders too. Returns the file's path.
  std::string write(std::string_view name, std::string_view bytes) const {
    const std::string file_path = path(name);
    std::filesystem::create_directories(std::filesystem::path(file_path).parent_path());
    std::ofstream file(file_path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
      throw std::runtime_error("cannot write " + file_path);
    }
    return file_path;
  }

 private:
  std::string path_;
};

/// Runs a check in a child process without root's rights, so that file permissions apply; returns its result. False,
/// too, when the child cannot give up its rights or crashes.
inline bool holdsUnprivileged(const std::function<bool()>& check) {
  constexpr unsigned kNobody = 65534;
  const pid_t child = fork();
  if (child == 0) {
    const bool unprivileged = geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
    _exit(unprivileged && check() ? 0 : 1);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace support
