// Names of the project's parts - files, presets, targets, tests, options of the tool - in commands and texts, and
// whether the parts exist.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "docs/session.h"

namespace docs_test {

class Names {
 public:
  Names();

  /// One line for each part that the command names and that does not exist.
  std::vector<std::string> missingIn(const std::string& command);
  /// The paths of the project in a text that do not exist. A path may lack its extension, and may have a "*".
  std::vector<std::string> missingPathsIn(const std::string& text) const;

 private:
  std::vector<std::string> missingToolWords(const std::vector<std::string>& words);
  const std::string& help(const std::string& command);

  Session session_;
  std::vector<std::string> folders_;  ///< at the top of the project
  std::string presets_;               ///< the text of CMakePresets.json
  std::string build_files_;           ///< the text of every CMake file
  std::string test_files_;            ///< the text of everything in tests/
  std::map<std::string, std::string> help_;
};

}  // namespace docs_test
