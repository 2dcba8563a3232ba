// How many blocks of memory the process has, counted exactly. Any thread.
#pragma once

#include <cstdint>

namespace leak_budget {

/// Blocks that were allocated and are not freed. The program that links this has the C library's allocation functions
/// under their own names, with a counter in each.
std::int64_t livingBlocks();

}  // namespace leak_budget
