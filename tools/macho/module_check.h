// Checks that a built library holds the module record and the method table that the host reads.
#pragma once

#include <string>
#include <vector>

#include "tools/macho/image.h"

namespace macho {

/// The name of a symbol as the source spells it, without namespaces and parameters.
std::string plainName(const std::string& symbol);

/// What is wrong with the module record and the method table of `image`, one line each; empty when all is right.
std::vector<std::string> problemsWithModule(const Image& image);

}  // namespace macho
