// Memory blocks: objects of class MemoryBlock. Their argument lists are this host's own choice.
#include "devhost/entries/entries.h"
#include "devhost/entries/entry_values.h"

namespace devhost {
namespace {

constexpr const char* kMemoryBlockClass = "MemoryBlock";

/// A block that is made larger than this is taken for a wrong size.
constexpr int kMaxBytes = 100'000'000;

void* newMemoryBlock(int size) {
  return guarded<void*>("newMemoryBlock", nullptr, [=](Host& host) -> void* {
    if (size < 0 || size > kMaxBytes) {
      host.handles().addFault("newMemoryBlock: " + std::to_string(size) + " bytes");
      return nullptr;
    }
    const Ref<Object> block = host.makeObject(kMemoryBlockClass);
    block->ownMemory(static_cast<std::size_t>(size));
    return give(block);
  });
}

void* memoryBlockOfPointer(void* address) {
  return guarded<void*>("PtrToMemoryBlock", nullptr, [=](Host& host) {
    const Ref<Object> block = host.makeObject(kMemoryBlockClass);
    block->borrowMemory(address);
    return give(block);
  });
}

/// Null for nil, and for an object that is no memory block, which is noted as a fault.
const Memory* find(const void* object, const char* where) {
  Host& host = Host::current();
  const Object* const found = host.handles().find<Object>(object, where);
  if (found != nullptr && found->memory() == nullptr) {
    host.handles().addFault(std::string(where) + ": " + found->describe() + " is no memory block");
  }
  return found == nullptr ? nullptr : found->memory();
}

void* memoryBlockPointer(void* block) {
  const Memory* const memory = find(block, "memoryBlockGetPtr");
  return memory == nullptr ? nullptr : memory->address;
}

std::int64_t memoryBlockSize(void* block) {
  const Memory* const memory = find(block, "memoryBlockGetSize");
  return memory == nullptr ? 0 : memory->size;
}

const Entry kEntries[] = {
    entry("newMemoryBlock", newMemoryBlock),          // (int size) -> new object; its bytes are zero
    entry("PtrToMemoryBlock", memoryBlockOfPointer),  // (address) -> new object over memory that it does not own
    entry("memoryBlockGetPtr", memoryBlockPointer),   // (object) -> address; valid while the object lives
    entry("memoryBlockGetSize", memoryBlockSize),     // (object) -> int64; -1 when it is not known
};

}  // namespace

void addMemoryEntries(Host& host) { addEntries(host, kEntries); }

}  // namespace devhost
