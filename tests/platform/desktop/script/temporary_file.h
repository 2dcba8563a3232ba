// A file in a folder of its own, removed with it.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content, const std::string& name = "desktop.json") {
    std::string pattern = (std::filesystem::temp_directory_path() / "desktop-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    path_ = folder_ / name;
    std::ofstream(path_, std::ios::binary) << content;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { std::filesystem::remove_all(folder_); }

  std::string path() const { return path_.string(); }
  std::string folder() const { return folder_.string(); }

 private:
  std::filesystem::path folder_;
  std::filesystem::path path_;
};
