#include "docs/session.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace docs_test {
namespace {

namespace fs = std::filesystem;

constexpr char kEndOfCommand = '\x1e';
/// Prints the command's status and restores it for `echo $?`.
constexpr const char* kAfterCommand = "\ndocs_status=$?; printf '\\036%d\\n' $docs_status; (exit $docs_status)\n";

/// The sanitizers' options, without the search for leaks, which takes a second for each command and is done by the
/// tool's own tests.
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
  const fs::path project = PROJECT_FOLDER;
  const fs::path folder = folder_.path();
  for (const char* const name : {"devhost", "docs"}) {
    fs::create_symlink(project / name, folder / name);
  }
  fs::create_directories(folder / "build/release");
  fs::create_symlink(fs::path(OSTREVIN_HOST).parent_path(), folder / "build/release/bin");
  fs::create_directories(folder / "displays/build");
  fs::create_symlink(README_EXAMPLE, folder / "displays/build/displays");
  fs::create_directory(folder / "home");
  // The last step of ./run.
  write("run", "#!/bin/sh\nexec '" OSTREVIN_HOST "' \"$@\"\n");
  fs::permissions(folder / "run", fs::perms::owner_all);
}

std::string Session::write(const std::string& name, const std::string& text) const {
  std::string path = folder_.path(name);
  std::ofstream(path) << text;
  return path;
}

std::vector<Outcome> Session::run(const std::vector<std::string>& commands) {
  const std::string programs = fs::path(OSTREVIN_HOST).parent_path();
  std::vector<std::string> words{"env", "-i", "LANG=C.UTF-8", "HOME=" + folder_.path("home"),
                                 "PATH=" + programs + ":/usr/local/bin:/usr/bin:/bin"};
  const std::vector<std::string> variables = sanitizerVariables();
  words.insert(words.end(), variables.begin(), variables.end());
  std::string script = "cd '" + folder_.path() + "' && exec 2>&1\n" + exports_;
  for (const std::string& command : commands) {
    script += command + kAfterCommand;
    exports_ += command.starts_with("export ") ? command + "\n" : "";
  }
  words.insert(words.end(), {"bash", "-c", script});
  const std::string output = support::run(words).output;

  std::vector<Outcome> outcomes;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = output.find(kEndOfCommand, begin)) != std::string::npos;) {
    const std::size_t line_end = output.find('\n', end);
    outcomes.push_back(
        {std::stoi(output.substr(end + 1, line_end - end - 1)), splitLines(output.substr(begin, end - begin))});
    begin = line_end + 1;
  }
  if (outcomes.size() != commands.size()) {
    throw std::runtime_error("bash ended after " + std::to_string(outcomes.size()) + " commands of " +
                             std::to_string(commands.size()));
  }
  return outcomes;
}

}  // namespace docs_test
