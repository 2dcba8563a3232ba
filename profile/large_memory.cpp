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
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t before_first_page = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
  const std::size_t whole_pages = (size - before_first_page) / page * page;
  // Whether the advice is heeded does not matter.
  madvise(static_cast<char*>(memory) + before_first_page, whole_pages, MADV_HUGEPAGE);
#endif
}

}  // namespace ProfileServices
