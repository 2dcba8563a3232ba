#include "docs/commands.h"

#include <algorithm>
#include <regex>
#include <utility>

namespace docs_test {
namespace {

constexpr const char* kPrompt = "$ ";
constexpr const char* kEllipsis = "…";

/// Variables that are set for one command: NAME=value, the value perhaps in quotes.
const std::string kAssignments = R"((?:[A-Z_]+=(?:"[^"]*"|'[^']*'|\S*) +)*)";

/// A beginning of commands. Made once: regular expressions take their time.
class Beginning {
 public:
  explicit Beginning(const std::string& pattern) : regex_(kAssignments + "(?:" + pattern + R"()(?=\s|$))") {}
  bool matches(const std::string& command) const {
    return std::regex_search(command, regex_, std::regex_constants::match_continuous);
  }

 private:
  std::regex regex_;
};

/// What a test runs, by the first word. Whatever begins here must end by itself.
constexpr const char* kRun[] = {
    R"(\./run)", "ostrevin-host", "build/release/bin/ostrevin-host", "displays/build/displays", "export", "echo", "cat",
};

struct NotRun {
  const char* pattern;
  const char* reason;
};

constexpr NotRun kNotRun[] = {
    {R"(ostrevin-host watch|\./run watch)", "runs until it is stopped; its own tests stop it"},
    {"git clone", "there is no other place to clone from; what decides about changes clones the project itself"},
    {"cd", "the test is where the documents' commands are to be given"},
    {R"(\./test|bench/run|fuzz/run)", "builds and runs what this test is a part of, or takes minutes"},
    {R"(\.ci/run)", "runs the whole suite several times"},
    {"scripts/prepare", "installs packages"},
    {"valgrind", "takes a build of its own"},
    {"scripts/build", "builds"},
    {"scripts/check-(?:format|lint)", "reads, or rewrites, every file of the project"},
    {"scripts/[a-z-]+", "works on the whole build"},
    {"cmake --preset", "configures a build, for macOS with an SDK that is not here"},
    {"cmake --build", "builds"},
    {"cmake --install", "the tests Consumer.* and ReadmeExample.* install"},
    {"cmake -S displays", "the tests ReadmeExample.* configure what the README shows"},
    {"cpack", "the test Packages.UnpackAnywhereAndRun makes the packages"},
    {"ctest", "runs tests from within a test"},
    {"build/release/bin/soak", "runs for minutes; a short run is a test of its own"},
    {"(?:sudo )?apt-get|brew|npm", "installs packages"},
    {"codesign|ditto|xcrun|xcode-select", "is a Mac's"},
    {"valgrind", "takes minutes"},
    {"xrandr|colormgr", "asks the servers of the reader's own desktop"},
    {"man", "shows a page on a terminal"},
};

std::string withoutTrailingBlanks(std::string line) {
  line.erase(line.find_last_not_of(" \t\r") + 1);
  return line;
}

bool lineMatches(const std::string& shown, const std::string& printed) {
  const std::string ellipsis = kEllipsis;
  std::size_t begin = 0;
  std::size_t position = 0;
  for (bool first = true;; first = false) {
    const std::size_t end = shown.find(ellipsis, begin);
    const std::string part = shown.substr(begin, end - begin);
    if (end == std::string::npos && !first) {  // what follows the last ellipsis ends the line
      return printed.size() >= position + part.size() && printed.ends_with(part);
    }
    if (end == std::string::npos) {
      return part == printed;
    }
    const std::size_t found = printed.find(part, position);
    if (found == std::string::npos || (first && found != 0)) {
      return false;
    }
    position = found + part.size();
    begin = end + ellipsis.size();
  }
}

bool linesMatch(const std::vector<std::string>& shown, std::size_t from_shown, const std::vector<std::string>& printed,
                std::size_t from_printed) {
  if (from_shown == shown.size()) {
    return from_printed == printed.size();
  }
  if (shown[from_shown] == kEllipsis) {
    for (std::size_t next = from_printed; next <= printed.size(); ++next) {
      if (linesMatch(shown, from_shown + 1, printed, next)) {
        return true;
      }
    }
    return false;
  }
  return from_printed < printed.size() &&
         lineMatches(withoutTrailingBlanks(shown[from_shown]), withoutTrailingBlanks(printed[from_printed])) &&
         linesMatch(shown, from_shown + 1, printed, from_printed + 1);
}

/// A command that ends with a backslash goes on in the next line.
void append(std::vector<Command>& commands, const std::string& text, std::size_t line) {
  if (!commands.empty() && commands.back().text.ends_with("\\")) {
    commands.back().text += "\n" + text;
  } else {
    commands.push_back({text, line, std::nullopt});
  }
}

std::vector<Command> sessionCommands(const Block& block) {
  std::vector<Command> commands;
  for (std::size_t i = 0; i < block.lines.size(); ++i) {
    const std::string& line = block.lines[i];
    if (line.starts_with(kPrompt)) {
      commands.push_back({line.substr(2), block.line + i, std::vector<std::string>()});
    } else if (commands.empty()) {
      commands.push_back({line, block.line + i, std::nullopt});  // not a command: treated as an unknown one
    } else if (commands.back().text.ends_with("\\")) {
      commands.back().text += "\n" + line;
    } else {
      commands.back().output->push_back(line);
    }
  }
  return commands;
}

}  // namespace

std::vector<Command> commandsOf(const Block& block) {
  if (block.language == "console") {
    return sessionCommands(block);
  }
  const bool is_shell = block.language == "sh" || (block.language.empty() && looksLikeCommand(block.lines.front()));
  std::vector<Command> commands;
  for (std::size_t i = 0; is_shell && i < block.lines.size(); ++i) {
    if (!block.lines[i].empty() && !block.lines[i].starts_with("#")) {
      append(commands, block.lines[i], block.line + i);
    }
  }
  return commands;
}

bool looksLikeCommand(const std::string& text) {
  static const Beginning kBeginning(
      R"(\$|\./[a-z]+|\.ci/[a-z]+|bench/run|fuzz/run|scripts/[a-z-]+|build/[a-z]+/bin/[\w-]+|cmake -.*|ctest|cpack|git [a-z]+)"
      R"(|sudo|apt-get|codesign|xcrun [a-z]+|ostrevin-host .*)");
  return kBeginning.matches(text);
}

Treatment treatmentOf(const std::string& command) {
  static const std::vector<std::pair<Beginning, std::string>> kReasons = [] {
    std::vector<std::pair<Beginning, std::string>> reasons;
    for (const NotRun& not_run : kNotRun) {
      reasons.emplace_back(Beginning(not_run.pattern), not_run.reason);
    }
    return reasons;
  }();
  static const std::vector<Beginning> kBeginnings(std::begin(kRun), std::end(kRun));
  for (const auto& [beginning, reason] : kReasons) {
    if (beginning.matches(command)) {
      return {Treatment::Kind::kNotRun, reason};
    }
  }
  const bool is_run = std::any_of(kBeginnings.begin(), kBeginnings.end(),
                                  [&](const Beginning& beginning) { return beginning.matches(command); });
  return {is_run ? Treatment::Kind::kRun : Treatment::Kind::kUnknown, {}};
}

bool showsWhatWasPrinted(const std::vector<std::string>& shown, const std::vector<std::string>& printed) {
  return linesMatch(shown, 0, printed, 0);
}

}  // namespace docs_test
