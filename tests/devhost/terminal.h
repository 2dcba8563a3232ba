// A program on a terminal of its own, for what a program does only there.
#pragma once

#include <string>
#include <vector>

#include "support/process.h"

namespace test_support {

/// Runs a program whose three standard streams are a terminal; answers all that it wrote there. Throws
/// std::runtime_error when it cannot be started or fails.
std::string runOnTerminal(const std::vector<std::string>& command);

}  // namespace test_support
