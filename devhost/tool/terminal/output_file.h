// Writes a file that the user named.
#pragma once

#include <stdexcept>
#include <string>

namespace devhost::tool {

/// A file that cannot be written. What() is one line with the reason.
class OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Creates or replaces the regular file at `path` atomically. A symbolic link is followed and stays. Devices, pipes,
/// sockets and directories are refused; the shell's redirection serves for those. Throws OutputError.
void writeFile(const std::string& path, const std::string& content);

}  // namespace devhost::tool
