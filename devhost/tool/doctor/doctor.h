// What each source reports about the displays, what is missing, and how to fix that.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devhost/calling/plugin.h"

namespace devhost::tool {

struct Finding {
  enum class State {
    kGood,
    kMissing,
    kNote,  ///< neither
  };
  State state = State::kGood;
  std::string source;  ///< such as "RandR"
  std::string text;    ///< a sentence without its full stop
  std::string remedy;  ///< for what is missing: a command or an advice that fixes it
};

struct DisplayFindings {
  std::uint32_t number = 0;
  std::string name;
  std::vector<Finding> findings;
};

struct Diagnosis {
  std::vector<Finding> findings;  ///< about the desktop as a whole
  std::vector<DisplayFindings> displays;
};

Finding good(std::string source, std::string text);
Finding missing(std::string source, std::string text, std::string remedy);
Finding note(std::string source, std::string text);

/// The command that assigns a profile to a display; the user replaces FILE.icc.
std::string assignCommand(std::uint32_t display);

/// A text as one word of a shell's command line, without control characters.
std::string shellWord(const std::string& text);

/// Queries this system's sources; the displays' names come from `plugin`.
Diagnosis examineDesktop(const Plugin& plugin);

}  // namespace devhost::tool
