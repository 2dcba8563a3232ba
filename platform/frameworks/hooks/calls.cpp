#include "frameworks/hooks/calls.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace platform::calls {
namespace {

constexpr std::array<const char*, kCallCount> kNames = {
#define FRAMEWORK_CALL(name) #name,
#include "frameworks/hooks/calls.def"
#undef FRAMEWORK_CALL
};

struct HookSlot {
  std::shared_ptr<const Hook> hook;
  std::uint64_t calls = 0;
};

struct Hooks {
  std::mutex mutex;
  std::array<HookSlot, kCallCount> slots;
};

/// Never freed: a walk may still be running while the process exits.
Hooks& hooks() {
  static auto* const only = new Hooks;
  return *only;
}

std::size_t index(Call call) { return static_cast<std::size_t>(call); }

}  // namespace

namespace detail {

std::array<std::atomic<std::uint64_t>, kCallCount> counts{};
std::atomic<bool> any_hook{false};

Fault askHook(Call call) {
  std::shared_ptr<const Hook> hook;
  std::uint64_t nth = 0;
  {
    const std::lock_guard lock(hooks().mutex);
    HookSlot& slot = hooks().slots[index(call)];
    hook = slot.hook;
    nth = ++slot.calls;
  }
  return hook ? (*hook)(nth) : Fault{};
}

}  // namespace detail

void setHook(Call call, Hook hook) {
  const std::lock_guard lock(hooks().mutex);
  hooks().slots[index(call)] = {hook ? std::make_shared<const Hook>(std::move(hook)) : nullptr, 0};
  bool any = false;
  for (const HookSlot& slot : hooks().slots) {
    any = any || slot.hook;
  }
  detail::any_hook.store(any, std::memory_order_release);
}

void removeAllHooks() {
  const std::lock_guard lock(hooks().mutex);
  hooks().slots.fill({});
  detail::any_hook.store(false, std::memory_order_release);
}

std::uint64_t count(Call call) { return detail::counts[index(call)].load(std::memory_order_relaxed); }

const char* name(Call call) { return kNames[index(call)]; }

std::optional<Call> find(std::string_view wanted) {
  for (std::size_t i = 0; i < kCallCount; ++i) {
    if (wanted == kNames[i]) {
      return static_cast<Call>(i);
    }
  }
  return std::nullopt;
}

}  // namespace platform::calls

namespace platform {

void fatal(const char* function, const char* reason) {
  std::fprintf(stderr, "%s: %s\n", function, reason);
  std::abort();
}

}  // namespace platform
