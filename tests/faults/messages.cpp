#include "faults/messages.h"

#include <dlfcn.h>
#include <link.h>
#include <objc/message.h>
#include <objc/runtime.h>

#include <atomic>
#include <mutex>

namespace faults {
namespace {

using Lookup = IMP (*)(id, SEL);

struct Range {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

std::atomic<std::uintptr_t> watched_begin{0};
std::atomic<std::uintptr_t> watched_end{0};

/// Kept for the life of the process: a walk may still send messages while the process exits.
struct State {
  std::mutex mutex;
  std::set<std::string> sent;
  std::string answered;  ///< selector; empty for none
  const void* result = nullptr;
  std::uint64_t only_nth = 0;
  std::uint64_t seen = 0;
};

State& state() {
  static auto* const kept = new State;
  return *kept;
}

/// What an answered message comes to. Arguments are not looked at, so it serves any method that returns a pointer.
std::atomic<const void*> current_result{nullptr};
const void* answerIt() { return current_result.load(); }

/// Notes the message; true when it is to be answered.
bool notes(SEL selector) {
  const std::lock_guard lock(state().mutex);
  const std::string name = sel_getName(selector);
  state().sent.insert(name);
  if (name != state().answered) {
    return false;
  }
  ++state().seen;
  current_result = state().result;
  return state().only_nth == 0 || state().only_nth == state().seen;
}

int findRange(dl_phdr_info* info, std::size_t, void* data) {
  auto& [address, range] = *static_cast<std::pair<std::uintptr_t, Range>*>(data);
  Range whole{UINTPTR_MAX, 0};
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const auto& header = info->dlpi_phdr[i];
    if (header.p_type == PT_LOAD) {
      whole.begin = std::min<std::uintptr_t>(whole.begin, info->dlpi_addr + header.p_vaddr);
      whole.end = std::max<std::uintptr_t>(whole.end, info->dlpi_addr + header.p_vaddr + header.p_memsz);
    }
  }
  if (whole.begin <= address && address < whole.end) {
    range = whole;
    return 1;
  }
  return 0;
}

}  // namespace

void watchMessagesOf(const void* address_in_library) {
  std::pair<std::uintptr_t, Range> found{reinterpret_cast<std::uintptr_t>(address_in_library), {}};
  dl_iterate_phdr(findRange, &found);
  watched_begin = found.second.begin;
  watched_end = found.second.end;
}

std::set<std::string> messagesSent() {
  const std::lock_guard lock(state().mutex);
  return state().sent;
}

void answerMessage(const std::string& selector, const void* result, std::uint64_t only_nth) {
  const std::lock_guard lock(state().mutex);
  state().answered = selector;
  state().result = result;
  state().only_nth = only_nth;
  state().seen = 0;
}

void answerNoMessage() { answerMessage("", nullptr); }

}  // namespace faults

/// Every message of the process comes this way, from before main() on.
extern "C" __attribute__((visibility("default"))) IMP objc_msg_lookup(id receiver, SEL selector) {
  static std::atomic<faults::Lookup> real{nullptr};
  faults::Lookup lookup = real.load(std::memory_order_relaxed);
  if (lookup == nullptr) {
    lookup = reinterpret_cast<faults::Lookup>(dlsym(RTLD_NEXT, "objc_msg_lookup"));
    real.store(lookup, std::memory_order_relaxed);
  }
  const auto caller = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
  const bool watched = caller >= faults::watched_begin.load(std::memory_order_relaxed) &&
                       caller < faults::watched_end.load(std::memory_order_relaxed);
  if (watched && faults::notes(selector)) {
    return reinterpret_cast<IMP>(faults::answerIt);
  }
  return lookup(receiver, selector);
}
