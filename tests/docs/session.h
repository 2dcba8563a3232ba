// One document's commands, run one after another as a reader would who has built the project: bash, in a folder that
// looks like the project's, with no X server, no desktop file, and a home of its own.
#pragma once

#include <string>
#include <vector>

#include "docs/commands.h"
#include "support/process.h"

namespace docs_test {

struct Outcome {
  Command command;
  int status = 0;
  std::vector<std::string> printed;  ///< standard output and standard error as they came
};

class Session {
 public:
  Session();

  /// Runs the commands that tests run; the others have no outcome. Throws std::runtime_error when bash does not get to
  /// the end.
  std::vector<Outcome> run(const std::vector<Command>& commands);

  /// What the tool prints with these arguments, standard error included; `status` becomes its exit status.
  std::string runTool(const std::vector<std::string>& arguments, int& status) const;
  /// Writes a file into the folder; answers its path.
  std::string write(const std::string& name, const std::string& text) const;

 private:
  std::vector<std::string> bash(const std::string& script) const;

  test_support::TemporaryDirectory folder_;
  std::string exports_;  ///< the export commands so far; each run begins with them
};

}  // namespace docs_test
