// The block run-time: what the compiler calls to copy and release a block.
//
// The system's Foundation exports functions of these names that cannot copy this compiler's blocks, and the load order
// decides which functions a process gets. So each of our libraries and programs contains these functions, hidden. A
// block carries all that is needed to copy and free it: any copy of these functions will do.
//
// The layouts are those of the compiler's published block ABI. Any thread.
#include <Block.h>

#import <Foundation/Foundation.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// --- flags of a block or a __block variable

constexpr std::int32_t kReferenceMask = 0xFFFE;
constexpr std::int32_t kOneReference = 2;  // bit 0 is not part of the count
constexpr std::int32_t kOnHeap = 1 << 24;
constexpr std::int32_t kHasHelpers = 1 << 25;
constexpr std::int32_t kIsGlobal = 1 << 28;

// --- what a captured field is

constexpr int kFieldIsObject = 3;
constexpr int kFieldIsBlock = 7;
constexpr int kFieldIsByref = 8;
constexpr int kFieldIsWeak = 16;

struct Descriptor {
  std::size_t reserved;
  std::size_t size;
  void (*copy)(void* destination, const void* source);  // these two only with kHasHelpers
  void (*dispose)(const void* block);
};

struct BlockLayout {
  void* isa;
  std::atomic<std::int32_t> flags;
  std::int32_t reserved;
  void (*invoke)(void*, ...);
  const Descriptor* descriptor;
};

/// A __block variable. Its frame on the stack and, once a block that uses it was copied, its one copy on the heap; both
/// point to the one that counts.
struct Byref {
  void* isa;
  std::atomic<Byref*> forwarding;
  std::atomic<std::int32_t> flags;
  std::uint32_t size;
  void (*keep)(Byref* destination, Byref* source);  // these two only with kHasHelpers
  void (*destroy)(Byref* variable);
};

static_assert(sizeof(std::atomic<std::int32_t>) == sizeof(std::int32_t));
static_assert(sizeof(std::atomic<Byref*>) == sizeof(void*));
static_assert(offsetof(BlockLayout, descriptor) == 24);
static_assert(offsetof(Byref, keep) == 24);

void takeReference(std::atomic<std::int32_t>& flags) { flags.fetch_add(kOneReference, std::memory_order_relaxed); }

/// True when it was the last one.
bool dropReference(std::atomic<std::int32_t>& flags) {
  return (flags.fetch_sub(kOneReference, std::memory_order_acq_rel) & kReferenceMask) == kOneReference;
}

void* allocate(std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) {
    std::abort();  // the compiler's code does not expect a block that could not be copied
  }
  return memory;
}

/// The variable's copy on the heap, made now if there is none, with a reference for a block.
Byref* copyByref(Byref* variable) {
  Byref* const current = variable->forwarding.load(std::memory_order_acquire);
  if ((current->flags.load(std::memory_order_relaxed) & kOnHeap) != 0) {
    takeReference(current->flags);
    return current;
  }
  auto* const copy = static_cast<Byref*>(allocate(variable->size));
  std::memcpy(static_cast<void*>(copy), variable, variable->size);
  // One reference is the block's, the other that of the frame on the stack, which releases it at the end of its scope.
  copy->flags.store((current->flags.load(std::memory_order_relaxed) & ~kReferenceMask) | kOnHeap | 2 * kOneReference,
                    std::memory_order_relaxed);
  copy->forwarding.store(copy, std::memory_order_relaxed);
  variable->forwarding.store(copy, std::memory_order_release);
  if ((copy->flags.load(std::memory_order_relaxed) & kHasHelpers) != 0) {
    variable->keep(copy, variable);
  }
  return copy;
}

void releaseByref(Byref* variable) {
  Byref* const current = variable->forwarding.load(std::memory_order_acquire);
  if ((current->flags.load(std::memory_order_relaxed) & kOnHeap) == 0 || !dropReference(current->flags)) {
    return;
  }
  if ((current->flags.load(std::memory_order_relaxed) & kHasHelpers) != 0) {
    current->destroy(current);
  }
  std::free(current);
}

}  // namespace

// The names are the compiler's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

// What a block's isa points to; only the addresses matter.
void* _NSConcreteStackBlock[32];
void* _NSConcreteMallocBlock[32];
void* _NSConcreteGlobalBlock[32];

void* _Block_copy(const void* source) {
  auto* const block = static_cast<BlockLayout*>(const_cast<void*>(source));
  if (block == nullptr) {
    return nullptr;
  }
  const std::int32_t flags = block->flags.load(std::memory_order_relaxed);
  if ((flags & kIsGlobal) != 0) {
    return block;
  }
  if ((flags & kOnHeap) != 0) {
    takeReference(block->flags);
    return block;
  }
  auto* const copy = static_cast<BlockLayout*>(allocate(block->descriptor->size));
  std::memcpy(static_cast<void*>(copy), block, block->descriptor->size);
  copy->isa = static_cast<void*>(_NSConcreteMallocBlock);
  copy->flags.store((flags & ~kReferenceMask) | kOnHeap | kOneReference, std::memory_order_relaxed);
  if ((flags & kHasHelpers) != 0) {
    block->descriptor->copy(copy, block);
  }
  return copy;
}

void _Block_release(const void* released) {
  auto* const block = static_cast<BlockLayout*>(const_cast<void*>(released));
  if (block == nullptr || (block->flags.load(std::memory_order_relaxed) & (kIsGlobal | kOnHeap)) != kOnHeap ||
      !dropReference(block->flags)) {
    return;
  }
  if ((block->flags.load(std::memory_order_relaxed) & kHasHelpers) != 0) {
    block->descriptor->dispose(block);
  }
  std::free(block);
}

/// The compiler's copy helpers call this for each captured field that is more than plain bytes. A field of a __block
/// variable comes with other values of `kind`, and is not retained.
void _Block_object_assign(void* destination, const void* object, int kind) {
  auto* const field = static_cast<const void**>(destination);
  switch (kind) {
    case kFieldIsObject:
      *field = [static_cast<id>(const_cast<void*>(object)) retain];
      break;
    case kFieldIsBlock:
      *field = _Block_copy(object);
      break;
    case kFieldIsByref:
    case kFieldIsByref | kFieldIsWeak:
      *field = copyByref(static_cast<Byref*>(const_cast<void*>(object)));
      break;
    default:
      *field = object;
      break;
  }
}

void _Block_object_dispose(const void* object, int kind) {
  switch (kind) {
    case kFieldIsObject:
      [static_cast<id>(const_cast<void*>(object)) release];
      break;
    case kFieldIsBlock:
      _Block_release(object);
      break;
    case kFieldIsByref:
    case kFieldIsByref | kFieldIsWeak:
      releaseByref(static_cast<Byref*>(const_cast<void*>(object)));
      break;
    default:
      break;
  }
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
