// The commands that documents show: which there are, which of them a test runs, and why the others are not run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "docs/markdown.h"

namespace docs_test {

struct Command {
  std::string text;
  std::size_t line = 0;
  /// What it prints; absent where the document does not show that.
  std::optional<std::vector<std::string>> output;
};

/// The commands of a block: those behind "$ " in a `console` block, every line of an `sh` block, and of a block without
/// a language that begins like a command.
std::vector<Command> commandsOf(const Block& block);

/// Whether the text begins as commands of the project do, as against other text between backticks.
bool looksLikeCommand(const std::string& text);

struct Treatment {
  enum class Kind { kRun, kNotRun, kUnknown };
  Kind kind = Kind::kUnknown;
  std::string reason;  ///< why it is not run
};
Treatment treatmentOf(const std::string& command);

/// `printed` is what `shown` says: equal line by line, blanks at the ends of lines aside, with "…" for any text within
/// a line and a line "…" for any number of lines.
bool showsWhatWasPrinted(const std::vector<std::string>& shown, const std::vector<std::string>& printed);

}  // namespace docs_test
