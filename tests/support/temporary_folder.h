// A folder of a test's own, removed with all that is in it. Objects belong to one thread.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
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

  /// Makes the folders on the way too. Answers the file's path.
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

}  // namespace support
