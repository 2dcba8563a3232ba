// A program on a terminal of its own, for what a program does only there.
#pragma once

#include <string>
#include <vector>

#include "support/process.h"

namespace test_support {

/// Runs a program whose three standard streams are a terminal; answers all that it wrote there. Throws
/// std::runtime_error when it cannot be started or fails. The terminal is `columns` wide, or does not say when that is
/// 0.
std::string runOnTerminal(const std::vector<std::string>& command, unsigned short columns = 0);

}  // namespace test_support
