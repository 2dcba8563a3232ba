// Where this program lies.
#pragma once

#include <string>

namespace devhost::tool {

/// Absolute path of the running program, symbolic links resolved; empty when the system does not say.
std::string executablePath();

}  // namespace devhost::tool
