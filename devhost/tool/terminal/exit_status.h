// What the tool's exit status says; --help and docs/json.md repeat it.
#pragma once

namespace devhost::tool {

enum ExitStatus : int {
  kDone = 0,
  kNotDone = 1,     ///< the plugin answered, but what was asked for is not so; or it cannot be loaded
  kWrongUsage = 2,  ///< an option, a method, an argument or a desktop file that makes no sense
  kUnreleased = 3,  ///< --check found something
};

}  // namespace devhost::tool
