// How much work the queues of this process have, for tests that wait for it. Any thread.
#pragma once

#include <cstddef>

#include "desktop/model/export.h"

namespace platform {

/// Blocks that were given to a queue and have not come to their end.
PLATFORM_API std::size_t unfinishedBlocks();

}  // namespace platform
