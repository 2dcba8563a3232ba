// Making the first use of large buffers cheap. Any thread may call.
#pragma once

#include <cstddef>

namespace ProfileServices {

/// Says that `size` bytes of new memory are about to be written from end to end. Where the system has large pages on
/// request, it then provides the memory in them: filling 64 MiB costs a third of what it costs in small ones, each of
/// which is a fault of its own. Elsewhere, and for small sizes, nothing happens. The memory's content and use are not
/// affected.
void aboutToFill(void* memory, std::size_t size);

}  // namespace ProfileServices
