#include "tools/machorun/thread_locals.h"

#include <algorithm>
#include <cstdlib>

namespace machorun {
namespace {

constexpr std::uint8_t kInitialValues = 0x11;
constexpr std::uint8_t kZeros = 0x12;
constexpr std::uint8_t kVariables = 0x13;
constexpr std::size_t kAlignment = 64;

struct Descriptor {
  void (*entry)();
  const ThreadLocals* variables;
  std::uint64_t offset;
};

}  // namespace

ThreadLocals::ThreadLocals() {
  if (pthread_key_create(&key, std::free) != 0) {
    throw MachoError("no key is left for its thread-local variables");
  }
}

ThreadLocals::~ThreadLocals() { pthread_key_delete(key); }

std::unique_ptr<ThreadLocals> makeThreadLocals(const macho::Image& image, const MappedImage& mapped) {
  std::uint64_t begin = UINT64_MAX;
  std::uint64_t end = 0;
  for (const macho::Section& section : image.sections()) {
    if (section.type == kInitialValues || section.type == kZeros) {
      begin = std::min(begin, section.address);
      end = std::max(end, section.address + section.size);
    }
  }
  std::unique_ptr<ThreadLocals> variables;
  for (const macho::Section& section : image.sections()) {
    if (section.type != kVariables) {
      continue;
    }
    if (variables == nullptr) {
      variables = std::make_unique<ThreadLocals>();
      variables->initial = begin < end ? mapped.at(begin) : nullptr;
      variables->size = begin < end ? end - begin : 0;
    }
    for (std::uint64_t at = section.address; at + sizeof(Descriptor) <= section.address + section.size;
         at += sizeof(Descriptor)) {
      auto descriptor = mapped.read<Descriptor>(at);
      if (descriptor.offset >= variables->size) {
        throw MachoError("a thread-local variable lies outside its block");
      }
      descriptor.entry = machorun_thread_local_entry;
      descriptor.variables = variables.get();
      mapped.write(at, descriptor);
    }
  }
  return variables;
}

}  // namespace machorun

/// Called by the entry. The thread's block ends after the destructors of C++ variables have run.
extern "C" __attribute__((visibility("hidden"))) void* machorun_thread_local(const machorun::Descriptor* descriptor) {
  const machorun::ThreadLocals& variables = *descriptor->variables;
  void* values = pthread_getspecific(variables.key);
  if (values == nullptr) {
    constexpr std::size_t kAlignment = machorun::kAlignment;
    values = std::aligned_alloc(kAlignment, (variables.size + kAlignment - 1) / kAlignment * kAlignment);
    if (values == nullptr) {
      std::abort();  // as a Mac's loader does; the variable's address cannot be null
    }
    std::memcpy(values, variables.initial, variables.size);
    pthread_setspecific(variables.key, values);
  }
  return static_cast<std::uint8_t*>(values) + descriptor->offset;
}
