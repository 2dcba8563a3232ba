// Runs ostrevin-host as a program, with what a test says about its surroundings and nothing else.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/process.h"

namespace tool_test {

struct ToolRun : test_support::ProcessResult {
  nlohmann::json document() const { return nlohmann::json::parse(output); }
  std::size_t errorLines() const { return static_cast<std::size_t>(std::count(errors.begin(), errors.end(), '\n')); }
};

/// With neither an X server nor a desktop file, unless the options or the variables name one.
struct Variables {
  std::string display = {};
  std::string desktop = {};
  test_support::Environment more = {};
};

inline ToolRun runTool(std::vector<std::string> arguments, const Variables& variables = {}) {
  arguments.insert(arguments.begin(), OSTREVIN_HOST);
  test_support::Environment environment = variables.more;
  environment.insert(environment.begin(), {"DISPLAY=" + variables.display, "OSTREVIN_DESKTOP=" + variables.desktop});
  return {test_support::run(arguments, environment)};
}

inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class ToolTest : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    const std::string path = folder_.path() / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  test_support::TemporaryDirectory folder_;
};

}  // namespace tool_test
