// What commands and texts name of the project - scripts, files, presets, targets, tests, options of the tool - and
// whether it is there.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "docs/session.h"

namespace docs_test {

class Names {
 public:
  Names();

  /// What the command names and is not there, one line each.
  std::vector<std::string> missingIn(const std::string& command) const;
  /// The paths of the project in a text that lead nowhere. A path may lack its extension, and may have a "*".
  std::vector<std::string> missingPathsIn(const std::string& text) const;

 private:
  bool isInProject(const std::string& path) const;
  bool isFileInProject(const std::string& path) const;
  std::vector<std::string> missingToolWords(const std::vector<std::string>& words) const;
  const std::string& help(const std::string& command) const;

  Session session_;
  std::vector<std::string> folders_;  ///< at the top of the project
  std::vector<std::string> presets_;
  std::string build_files_;  ///< the text of every CMake file
  std::string test_files_;   ///< the text of everything in tests/
  mutable std::map<std::string, std::string> help_;
};

}  // namespace docs_test
