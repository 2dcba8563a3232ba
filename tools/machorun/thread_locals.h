// Thread-local variables of an image: each thread has a block of them from its first use to its end.
#pragma once

#include <pthread.h>

#include <memory>

#include "tools/machorun/mapped_image.h"

namespace machorun {

/// The variables of one image: as they are at first, and where each thread keeps its own. Lives as long as the image.
struct ThreadLocals {
  ThreadLocals();
  ~ThreadLocals();
  ThreadLocals(const ThreadLocals&) = delete;
  ThreadLocals& operator=(const ThreadLocals&) = delete;

  pthread_key_t key = 0;
  const std::uint8_t* initial = nullptr;
  std::size_t size = 0;
};

/// Makes the image's descriptors lead to what it returns: null when it has none. Throws MachoError for variables
/// outside their block.
std::unique_ptr<ThreadLocals> makeThreadLocals(const macho::Image& image, const MappedImage& mapped);

}  // namespace machorun

/// The entry of a descriptor: takes the descriptor's address and returns the variable's, and changes no other register.
extern "C" void machorun_thread_local_entry();
