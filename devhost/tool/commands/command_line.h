// Parses the command line, and prints the help.
#pragma once

#include <functional>
#include <variant>

#include "devhost/tool/commands/commands.h"
#include "devhost/tool/session/system.h"

namespace devhost::tool {

/// A parsed command line.
struct Request {
  Options options;
  /// Without an X server, a command that shows something shows the example desktop's.
  Shown shown = Shown::kProfiles;
  std::function<int(Session&)> run;
};

/// The request; or the exit status, when the help or an error was printed.
std::variant<Request, int> parseCommandLine(int count, char** texts);

}  // namespace devhost::tool
