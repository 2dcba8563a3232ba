// What each source answers about the displays, what is missing, and what would mend it.
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
    kNote,  ///< neither: worth knowing
  };
  State state = State::kGood;
  std::string source;  ///< who was asked, such as "RandR"
  std::string text;    ///< what it answered, in a sentence without its full stop
  std::string remedy;  ///< the command that would mend it, or what else would; for what is missing
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

/// The command that gives a display a profile, to be completed by the name of a file.
std::string assignCommand(std::uint32_t display);

/// A text as one word of a shell's command line, without control characters.
std::string shellWord(const std::string& text);

/// Asks this system's sources. `plugin` says which names the displays have.
Diagnosis examineDesktop(const Plugin& plugin);

}  // namespace devhost::tool
