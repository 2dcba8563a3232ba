// A regular file that lives in memory and is written anew for each execution. One thread.
#pragma once

#include <string>
#include <string_view>

namespace fuzz {

class MemoryFile {
 public:
  /// Empty at first. Ends the process when the system has no such files.
  MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  /// Absolute; good in this process.
  const std::string& path() const { return path_; }
  void write(std::string_view content) const;

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace fuzz
