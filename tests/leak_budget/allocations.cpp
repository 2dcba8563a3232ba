#include "leak_budget/allocations.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

std::atomic<std::int64_t> living{0};

void* counted(void* block) {
  if (block != nullptr) {
    living.fetch_add(1, std::memory_order_relaxed);
  }
  return block;
}

}  // namespace

std::int64_t leak_budget::livingBlocks() { return living.load(std::memory_order_relaxed); }

// The C library's functions behind those that it lets programs replace.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

#define REPLACEMENT __attribute__((visibility("default")))

REPLACEMENT void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }
REPLACEMENT void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }
REPLACEMENT void* memalign(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}
REPLACEMENT void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}

REPLACEMENT int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = counted(__libc_memalign(alignment, size));
  return *block == nullptr ? ENOMEM : 0;
}

REPLACEMENT void free(void* block) {
  if (block != nullptr) {
    living.fetch_sub(1, std::memory_order_relaxed);
  }
  __libc_free(block);
}

REPLACEMENT void* realloc(void* block, std::size_t size) {
  if (block == nullptr) {
    return malloc(size);
  }
  if (size == 0) {
    free(block);
    return nullptr;
  }
  return __libc_realloc(block, size);
}

}  // extern "C"
