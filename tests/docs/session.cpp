#include "docs/session.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace docs_test {
namespace {

namespace fs = std::filesystem;

constexpr char kEndOfCommand = '\x1e';
/// Goes on with the status that the command had, so that `echo $?` tells it.
constexpr const char* kAfterCommand = "\ndocs_status=$?; printf '\\036%d\\n' $docs_status; (exit $docs_status)\n";

/// What the reader has: the project's files, and the build where ./run puts it.
constexpr const char* kProjectFolders[] = {"devhost", "docs", "tests"};

/// What sanitizers are told; but not to look for leaks, which other tests of the tool do, and which takes a second at
/// the end of each command.
std::vector<std::string> sanitizerVariables() {
  std::vector<std::string> variables;
  for (const char* const name : {"LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* const value = std::getenv(name)) {
      variables.push_back(std::string(name) + "=" + value);
    }
  }
  const char* const options = std::getenv("ASAN_OPTIONS");
  variables.push_back(std::string("ASAN_OPTIONS=") + (options == nullptr ? "" : options) +
                      ":fast_unwind_on_malloc=1:detect_leaks=0");
  return variables;
}

}  // namespace

Session::Session() {
  const fs::path folder = folder_.path();
  for (const char* const name : kProjectFolders) {
    fs::create_symlink(fs::path(PROJECT_FOLDER) / name, folder / name);
  }
  const fs::path programs = fs::path(OSTREVIN_HOST).parent_path();
  fs::create_directories(folder / "build/release");
  fs::create_symlink(programs, folder / "build/release/bin");
  fs::create_directories(folder / "displays/build");
  fs::create_symlink(README_EXAMPLE, folder / "displays/build/displays");
  fs::create_directory(folder / "home");
  // What ./run does once everything is built.
  write("run", "#!/bin/sh\nexec '" OSTREVIN_HOST "' \"$@\"\n");
  fs::permissions(folder / "run", fs::perms::owner_all);
  // The reader's own files.
  fs::copy_file(fs::path(PROJECT_FOLDER) / "devhost/example-profile.icc", folder / "FILE.icc");
  fs::copy_file(fs::path(PROJECT_FOLDER) / "devhost/example-desktop.json", folder / "FILE.json");
}

std::string Session::write(const std::string& name, const std::string& text) const {
  std::string path = folder_.path() / name;
  std::ofstream(path) << text;
  return path;
}

std::vector<std::string> Session::bash(const std::string& script) const {
  const std::string programs = fs::path(OSTREVIN_HOST).parent_path();
  std::vector<std::string> command{"env", "-i", "LANG=C.UTF-8", "HOME=" + (folder_.path() / "home").string(),
                                   "PATH=" + programs + ":/usr/local/bin:/usr/bin:/bin"};
  const std::vector<std::string> variables = sanitizerVariables();
  command.insert(command.end(), variables.begin(), variables.end());
  command.insert(command.end(), {"bash", "-c", "cd '" + folder_.path().string() + "' && exec 2>&1\n" + script});
  const std::string output = test_support::run(command).output;
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = output.find(kEndOfCommand, begin)) != std::string::npos;) {
    const std::size_t line_end = output.find('\n', end);
    parts.push_back(output.substr(begin, end - begin));
    parts.push_back(output.substr(end + 1, line_end - end - 1));
    begin = line_end + 1;
  }
  return parts;
}

std::vector<Outcome> Session::run(const std::vector<Command>& commands) {
  std::vector<Outcome> outcomes;
  std::string script = exports_;
  for (const Command& command : commands) {
    if (treatmentOf(command.text).kind != Treatment::Kind::kRun) {
      continue;
    }
    outcomes.push_back({command, 0, {}});
    script += command.text + kAfterCommand;
    if (command.text.starts_with("export ")) {
      exports_ += command.text + "\n";
    }
  }
  if (outcomes.empty()) {
    return outcomes;
  }
  const std::vector<std::string> parts = bash(script);
  if (parts.size() != 2 * outcomes.size()) {
    throw std::runtime_error("bash ended after " + std::to_string(parts.size() / 2) + " commands of " +
                             std::to_string(outcomes.size()));
  }
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    outcomes[i].printed = splitLines(parts[2 * i]);
    outcomes[i].status = std::stoi(parts[2 * i + 1]);
  }
  return outcomes;
}

std::string Session::runTool(const std::vector<std::string>& arguments, int& status) const {
  std::string script = "ostrevin-host";
  for (const std::string& argument : arguments) {
    script += " '" + argument + "'";
  }
  const std::vector<std::string> parts = bash(script + kAfterCommand);
  if (parts.size() != 2) {
    throw std::runtime_error(script + " does not end");
  }
  status = std::stoi(parts[1]);
  return parts[0];
}

}  // namespace docs_test
