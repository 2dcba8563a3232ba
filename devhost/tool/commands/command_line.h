// The command line: what it asks for, and the help.
#pragma once

#include <functional>
#include <variant>

#include "devhost/tool/commands/commands.h"

namespace devhost::tool {

/// What the command line asks for.
struct Request {
  Options options;
  /// Whether the command is about displays, so that without an X server the example desktop serves better than none.
  bool needs_displays = true;
  std::function<int(Session&)> run;
};

/// The request; or the exit status, when there is nothing more to do: help was printed, or what is wrong was said.
std::variant<Request, int> parseCommandLine(int count, char** texts);

}  // namespace devhost::tool
