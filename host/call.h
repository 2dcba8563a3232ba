// How a member of the host-call family finds its entry, calls it, and reads the answer. The tables use this; others do
// not need to, except for invoke() on a method that the host has loaded for them.
//
// Host's thread. Two threads that look one entry up at once would store the same address.
#pragma once

#include <cstdint>
#include <type_traits>

#include "host/resolver.h"

namespace host {

/// Calls the function at `entry`, which must not be null, with `arguments` by value, each at its own width.
/// The host's own declaration of an entry may differ from this one in ways that the calling convention does not see (a
/// bool result read as 64 bits), so a sanitizer's comparison of the two types would be of no use.
template <typename Result, typename... Arguments>
__attribute__((no_sanitize("function"))) inline Result invoke(void* entry, Arguments... arguments) {
  static_assert((std::is_trivially_copyable_v<Arguments> && ...), "only what C can pass by value reaches the host");
  return reinterpret_cast<Result (*)(Arguments...)>(entry)(arguments...);
}

// --- Result kinds: what the host's answer is read as (Raw), what becomes of it (narrow), what stands in for it when
// the host lacks the entry (missing). The three ways to make a truth value out of an answer differ on purpose.

/// No result.
struct Nothing {
  using Raw = void;
  using Value = void;
};

/// The answer as it is, as a T; zero or null without an entry.
template <typename T>
struct As {
  using Raw = T;
  using Value = T;
  static T narrow(Raw raw) { return raw; }
  static T missing() { return T{}; }
};

/// A handle, a pointer or an integer, all 64 bits as they come.
using Word = As<std::intptr_t>;

/// The low 32 bits; `kMissing` without an entry.
template <std::uint32_t kMissing>
struct Low32Or {
  using Raw = std::uint64_t;
  using Value = std::uint32_t;
  static Value narrow(Raw raw) { return static_cast<Value>(raw); }
  static Value missing() { return kMissing; }
};
using Low32 = Low32Or<0>;

/// True when any of the 64 bits is set.
struct TrueIfAnyBit {
  using Raw = std::uint64_t;
  using Value = bool;
  static Value narrow(Raw raw) { return raw != 0; }
  static Value missing() { return false; }
};

/// True when any of the low 8 bits is set.
struct TrueIfLowByte {
  using Raw = std::uint64_t;
  using Value = bool;
  static Value narrow(Raw raw) { return (raw & 0xFF) != 0; }
  static Value missing() { return false; }
};

/// The low 8 bits as they are, 0 to 255: a truth value that is not reduced to 0 or 1.
struct LowByteAsIs {
  using Raw = std::uint64_t;
  using Value = std::uint8_t;
  static Value narrow(Raw raw) { return static_cast<Value>(raw); }
  static Value missing() { return 0; }
};

// --- The call

/// Looks the entry of `Slot` up and keeps the answer, null included. Out of line, so that calls of a known entry stay
/// short.
template <typename Slot>
[[gnu::noinline, gnu::cold]] inline void* resolve() {
  Slot::address = CallResolver(Slot::kEntry);
  return Slot::address;
}

/// The entry of `Slot`, looked up unless it is known; null when the host lacks it, and then asked for again next time.
template <typename Slot>
inline void* find() {
  void* const entry = Slot::address;
  return entry != nullptr ? entry : resolve<Slot>();
}

template <typename Kind, typename... Arguments>
inline typename Kind::Value callKnown(void* entry, Arguments... arguments) {
  if constexpr (std::is_void_v<typename Kind::Value>) {
    invoke<void>(entry, arguments...);
  } else {
    return Kind::narrow(invoke<typename Kind::Raw>(entry, arguments...));
  }
}

template <typename Slot, typename Kind, typename... Arguments>
[[gnu::noinline, gnu::cold]] inline typename Kind::Value resolveAndCall(Arguments... arguments) {
  void* const entry = resolve<Slot>();
  if (entry != nullptr) {
    return callKnown<Kind>(entry, arguments...);
  }
  if constexpr (!std::is_void_v<typename Kind::Value>) {
    return Kind::missing();
  }
}

/// What every member does: find the entry, call it with `arguments`, read the answer as `Kind` says. The first call
/// goes through a function of its own: a look-up in between would make every later call save the arguments.
template <typename Slot, typename Kind, typename... Arguments>
inline typename Kind::Value call(Arguments... arguments) {
  void* const entry = Slot::address;
  if (entry == nullptr) [[unlikely]] {
    return resolveAndCall<Slot, Kind>(arguments...);
  }
  return callKnown<Kind>(entry, arguments...);
}

}  // namespace host
