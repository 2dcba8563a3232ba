// Every framework call passes through here on its way in: it is counted, and a test may make it fail.
//
// The calls are listed once, in calls.def; a framework function begins with `if (calls::enter(Call::Name)) return
// FAILURE;`.
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

/// Makes something else of a dictionary that a call hands out, or is given. Gets it borrowed; answers an object of any
/// type with a reference for the caller, or null.
using Edit = std::function<const void*(const void* dictionary)>;

/// What a hook makes of one call. Of the members that a call has no use for, nothing comes.
struct Answer {
  bool fail = false;  ///< the call does nothing and answers its failure value: null, an error code, false
  /// What the call reports in place of the truth: a count, a length, a handle, a display's number, a truth value.
  std::optional<std::int64_t> number{};
  std::optional<double> real{};         ///< the same, of a scale factor
  std::optional<desktop::Rect> rect{};  ///< the same, of a rectangle
  std::optional<std::int32_t> error{};  ///< the call does nothing and answers this code, which may be that of success
  std::optional<std::int32_t> late_error{};  ///< the call does its work, and then answers this code all the same
  const void* object = nullptr;              ///< borrowed; what the call answers, whatever its own type is
  const Edit* edit = nullptr;  ///< borrowed, for as long as the call may use it; for calls with a dictionary
};

/// `nth` is 1 for the first call after the hook was set. A hook runs on the calling thread, before the call does its
/// work; it may change the desktop, and must not set hooks.
using Hook = std::function<Answer(std::uint64_t nth)>;

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
Answer askHook(Call call);
}  // namespace detail

/// Counts the call and gives its answer.
inline Answer answer(Call call) {
  detail::counts[static_cast<std::size_t>(call)].fetch_add(1, std::memory_order_relaxed);
  if (!detail::any_hook.load(std::memory_order_acquire)) [[likely]] {
    return {};
  }
  return detail::askHook(call);
}

/// True when the call is to fail.
inline bool enter(Call call) { return answer(call).fail; }

}  // namespace platform::calls
