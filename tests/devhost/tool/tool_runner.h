// Runs ostrevin-host as a program in a controlled environment.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace tool_test {

struct ToolRun : support::ProcessResult {
  nlohmann::json document() const { return nlohmann::json::parse(output); }
  std::size_t errorLines() const { return static_cast<std::size_t>(std::count(errors.begin(), errors.end(), '\n')); }
};

/// With neither an X server nor a desktop file, unless the options or the variables name one.
struct Variables {
  std::string display = {};
  std::string desktop = {};
  support::Environment more = {};
};

inline ToolRun runTool(std::vector<std::string> arguments, const Variables& variables = {}) {
  arguments.insert(arguments.begin(), OSTREVIN_HOST);
  support::Environment environment = variables.more;
  environment.insert(environment.begin(), {"DISPLAY=" + variables.display, "OSTREVIN_DESKTOP=" + variables.desktop});
  return {support::run(arguments, environment)};
}

/// What the tool writes when its three standard streams are a terminal of so many columns. The arguments need no
/// quotes.
inline std::string runOnTerminal(const std::vector<std::string>& arguments, int columns = 80) {
  std::string command = "stty cols " + std::to_string(columns) + "; exec " OSTREVIN_HOST;
  for (const std::string& argument : arguments) {
    command += " " + argument;
  }
  return support::runSuccessfully({"script", "--quiet", "--return", "--command", command, "/dev/null"});
}

inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

class ToolTest : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
  }
  std::string path(const std::string& name) const { return folder_.path(name); }

  support::TemporaryFolder folder_;
};

// --- desktops for tests of pictures

inline constexpr const char* kOneDisplay =
    R"({"displays": [{"number": 63, "bounds": [0, 0, 1440, 900], "name": "Built-in", "scale": 2}]})";

/// The main one in the middle, a higher one on its left, another one on its right; three scales. Screens are listed
/// where scales differ, at the places at which the plugin finds them.
inline constexpr const char* kThreeDisplays = R"({
  "displays": [
    {"number": 1, "bounds": [0, 0, 1440, 900], "name": "Built-in", "model": 1},
    {"number": 2, "bounds": [-2560, -540, 2560, 1440], "name": "Wide", "model": 2},
    {"number": 3, "bounds": [1440, -300, 1080, 1920], "name": "Portrait", "model": 3}],
  "screens": [
    {"frame": [0, 0, 1440, 900], "scale": 2},
    {"frame": [-2560, -540, 2560, 1440], "scale": 1},
    {"frame": [1440, -300, 1080, 1920], "scale": 1.5}]})";

/// One mirrors another, a third one reaches half over them, a fourth one lies within.
inline constexpr const char* kOverlappingDisplays = R"({
  "displays": [
    {"number": 1, "bounds": [0, 0, 1920, 1080], "name": "Internal", "model": 1},
    {"number": 2, "bounds": [0, 0, 1920, 1080], "name": "Projector", "model": 2},
    {"number": 3, "bounds": [1200, 600, 1280, 1024], "name": "Half over", "model": 3},
    {"number": 4, "bounds": [0, 0, 800, 600], "name": "Within", "model": 4}]})";

}  // namespace tool_test
