// How a member of the host-call family finds its entry, calls it, and narrows the result. Used by the tables, and
// elsewhere only for invoke() on a method that the host has loaded.
//
// Host's thread. Two threads that look up one entry at once would store the same address.
#pragma once

#include <cstdint>
#include <type_traits>

// --- The resolver

/// Maps the name of a host entry, a NUL-terminated string, to the entry's address, or to null when the host has none.
using REALresolver = void* (*)(const char* name);

/// Null until REALPluginMain stores the host's resolver; from then on only read.
inline constinit REALresolver gResolver = nullptr;

/// Passes `name` to the host and returns the entry unchanged; caches nothing. The resolver is deliberately not tested
/// for null: nothing may call the host before the host has called the library.
inline void* CallResolver(const char* name) { return gResolver(name); }

namespace host {

/// The argument as the host receives it.
template <typename Argument>
inline Argument asPassed(Argument argument) {
  return argument;
}

/// Bit 0 of the byte that the caller's bool holds. The compiler takes that byte for 0 or 1, and would pass it on whole.
inline bool asPassed(bool argument) {
  unsigned word = argument;
  asm("" : "+r"(word));  // from here on the compiler takes any value for possible
  return (word & 1) != 0;
}

/// Calls the function at `entry`, which must not be null, with `arguments` by value, each at its own width.
/// The host's own declaration of an entry may differ from this one in ways that the calling convention does not see (a
/// bool result read as 64 bits), so a sanitizer must not compare the two types.
template <typename Result, typename... Arguments>
__attribute__((no_sanitize("function"))) inline Result invoke(void* entry, Arguments... arguments) {
  static_assert((std::is_trivially_copyable_v<Arguments> && ...), "only what C can pass by value reaches the host");
  return reinterpret_cast<Result (*)(Arguments...)>(entry)(asPassed(arguments)...);
}

// --- Result kinds: the type that the host returns (Raw), its conversion (narrow), and the value when the host lacks
// the entry (missing). The three conversions to a truth value deliberately differ.

/// No result.
struct Nothing {
  using Raw = void;
  using Value = void;
};

/// The result as it is, as a T; zero or null without an entry.
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

/// Looks up the entry of `Slot` and stores it, null too. Out of line, so that calls of a known entry stay short.
template <typename Slot>
[[gnu::noinline, gnu::cold]] inline void* resolve() {
  Slot::address = CallResolver(Slot::kEntry);
  return Slot::address;
}

/// The entry of `Slot`, looked up unless it is known; null when the host lacks it, which is not cached.
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

/// What every member does: finds the entry, calls it with `arguments`, and converts the result by `Kind`. The first
/// call goes through a separate function: a look-up in line would make every later call save the arguments.
template <typename Slot, typename Kind, typename... Arguments>
inline typename Kind::Value call(Arguments... arguments) {
  void* const entry = Slot::address;
  if (entry == nullptr) [[unlikely]] {
    return resolveAndCall<Slot, Kind>(arguments...);
  }
  return callKnown<Kind>(entry, arguments...);
}

}  // namespace host
