// The entrance of every framework call: it is counted, a test may make it fail, and a null object is fatal.
//
// The calls are listed once, in calls.def; a framework function begins with `if (calls::shouldFail(Call::Name)) return
// FAILURE;`. Any thread.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::calls {

enum class Call : std::size_t {
#define FRAMEWORK_CALL(name) name,
#include "frameworks/hooks/calls.def"
#undef FRAMEWORK_CALL
  kCount
};

inline constexpr std::size_t kCallCount = static_cast<std::size_t>(Call::kCount);

/// Replaces a dictionary that a call hands out or is given. Borrows the dictionary; returns an object of any type that
/// the caller releases, or null.
using Edit = std::function<const void*(const void* dictionary)>;

/// What a hook changes about one call. Members that do not apply to the call are ignored.
struct Fault {
  bool fail = false;  ///< the call does nothing and returns its failure value: null, an error code, false
  /// What the call reports instead of the truth: a count, a length, a handle, a display's number, a Boolean.
  std::optional<std::int64_t> number{};
  std::optional<double> real{};              ///< the same, for a scale factor
  std::optional<desktop::Rect> rect{};       ///< the same, for a rectangle
  std::optional<std::int32_t> error{};       ///< the call does nothing and returns this code, which may mean success
  std::optional<std::int32_t> late_error{};  ///< the call does its work, then returns this code
  const void* object = nullptr;              ///< borrowed; the call returns it, of any type
  const Edit* edit = nullptr;                ///< borrowed for the length of the call; for calls with a dictionary
};

/// `nth` is 1 for the first call after the hook was set. A hook runs on the calling thread, before the call does its
/// work; it may change the desktop, and must not set hooks.
using Hook = std::function<Fault(std::uint64_t nth)>;

/// Sets, or with an empty function removes, the hook of one call. Not while calls are being made on other threads.
PLATFORM_API void setHook(Call call, Hook hook);
PLATFORM_API void removeAllHooks();
/// Calls made since the process began.
PLATFORM_API std::uint64_t count(Call call);
PLATFORM_API const char* name(Call call);
PLATFORM_API std::optional<Call> find(std::string_view name);

namespace detail {
extern std::array<std::atomic<std::uint64_t>, kCallCount> counts;
extern std::atomic<bool> any_hook;
Fault askHook(Call call);
}  // namespace detail

/// Counts the call and returns what its hook changes.
inline Fault fault(Call call) {
  detail::counts[static_cast<std::size_t>(call)].fetch_add(1, std::memory_order_relaxed);
  if (!detail::any_hook.load(std::memory_order_acquire)) [[likely]] {
    return {};
  }
  return detail::askHook(call);
}

/// Counts the call.
inline bool shouldFail(Call call) { return fault(call).fail; }

}  // namespace platform::calls

namespace platform {

/// Writes "FUNCTION: REASON" as one line to stderr and aborts.
[[noreturn]] void fatal(const char* function, const char* reason);

/// Fatal for null, as on the Mac, so that a test finds a guard that the plugin lacks.
inline void requireObject(const void* object, const char* function) {
  if (object == nullptr) [[unlikely]] {
    fatal(function, "null object");
  }
}

/// Blocks that were given to a queue and have not returned yet, for tests that wait for them.
PLATFORM_API std::size_t unfinishedBlocks();

}  // namespace platform
