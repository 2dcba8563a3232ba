// Instruction counts under callgrind. They repeat where times do not.
#pragma once

#include <string>
#include <vector>

#include "results.h"

namespace bench {

/// Runs a program under callgrind that prints a line "NUMBER|CALLS|N|METHOD|TWIN" for each pair, and names the dump of
/// each side "plugin NUMBER" and "twin NUMBER".
std::vector<Instructions> countInstructions(const std::vector<std::string>& program);

/// The same for the program of the host calls, whose lines are "NAME|CALLS|LIMIT" and whose dumps "member NAME" and
/// "bare NAME".
std::vector<Instructions> countHostCalls(const std::vector<std::string>& program);

}  // namespace bench
