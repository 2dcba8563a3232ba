// The computer and the tools that a measurement belongs to.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// Processor, memory, system, compiler, load: a line each.
std::vector<std::string> describeMachine();

}  // namespace bench
