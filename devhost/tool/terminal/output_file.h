// A file that the tool writes because the user named it.
#pragma once

#include <stdexcept>
#include <string>

namespace devhost::tool {

/// A file that cannot be written. What() is one line that says why.
class OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Puts `content` at `path`: a new file, or in place of a regular file that is there, whole or not at all. A symbolic
/// link is followed and stays. A device, a pipe, a socket or a directory is refused; for those the user has the shell's
/// redirection. Throws OutputError.
void writeFile(const std::string& path, const std::string& content);

}  // namespace devhost::tool
