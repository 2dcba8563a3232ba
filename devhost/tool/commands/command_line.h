// Parses the command line, and prints the help.
#pragma once

#include <functional>
#include <variant>

#include "devhost/tool/commands/commands.h"

namespace devhost::tool {

/// A parsed command line.
struct Request {
  Options options;
  /// Whether the command shows displays: without an X server it shows the example desktop's.
  bool needs_displays = true;
  std::function<int(Session&)> run;
};

/// The request; or the exit status, when the help or an error was printed.
std::variant<Request, int> parseCommandLine(int count, char** texts);

}  // namespace devhost::tool
