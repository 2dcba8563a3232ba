#include "profile/large_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace ProfileServices {

void aboutToFill([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE  // an advice that not every madvise() knows
  constexpr std::size_t kWorthAsking = 4 << 20;
  if (size < kWorthAsking) {
    return;
  }
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
  const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(memory) + size) / page * page;
  madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);  // whether it is heeded does not matter
#endif
}

}  // namespace ProfileServices
