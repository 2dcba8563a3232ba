// A document's commands, run as by a reader who has built the project: bash, in a folder that looks like the project's,
// with no X server, no desktop file, and a private home.
#pragma once

#include <string>
#include <vector>

#include "docs/markdown.h"
#include "support/process.h"
#include "support/temporary_folder.h"

namespace docs_test {

struct Outcome {
  int status = 0;
  std::vector<std::string> printed;  ///< standard output and standard error in their order
};

class Session {
 public:
  Session();

  /// Runs the commands in one bash; exports stay for the next run. Throws std::runtime_error when bash does not reach
  /// the end.
  std::vector<Outcome> run(const std::vector<std::string>& commands);

  /// Writes a file into the folder and returns its path.
  std::string write(const std::string& name, const std::string& text) const;

 private:
  support::TemporaryFolder folder_;
  std::string exports_;  ///< the export commands of earlier runs
};

}  // namespace docs_test
