// The macros of the host-call tables.
//
// A line is a macro because it makes a function and a slot of the same name, which nothing else in the language does at
// once. All of them are here, for use at global scope in this folder's tables:
//
//   HOST_SLOT(member, entry)
//     The slot alone, host::slots::member, for the few members whose body is written out.
//   HOST_MEMBER(member, entry, result)
//     A member whose argument list is not fixed here: it passes its arguments on, in order, by value and at their own
//     width. All argument lists share its slot. A member with a known list is a HOST_EXACT.
//   HOST_MEMBER_BESIDE(member, entry, result, (types))
//     The same, for a name that also has an exact form, which takes `types`: every call that the exact form can take
//     goes to it, even if its arguments have to be converted, and so does a call with a 0 or NULL for a pointer.
//   HOST_EXACT(member, entry, result, (parameters), (names))
//     A member with exactly these parameters; `names` repeats their names.
//   HOST_GETTER, HOST_SETTER(member, entry, result, type)     a property of an object, by name
//   HOST_VARIANT(member, entry, type)                         a new variant that holds a value
//   HOST_INSERT, HOST_GET, HOST_SET(member, entry, type)      an element of an array, in two stages (host/arrays.h)
//
// `result` is one of the result kinds of host/call.h: how the result is narrowed, and its value when the host lacks the
// entry. A handle or a pointer is an As of its type. A Word, all 64 bits, is an integer, or what the member's name
// leaves open: a number, a pointer, or nothing; 0 without an entry.
//
// Members are inline and slots are inline variables: a program contains only the members that it calls.
#pragma once

#include <type_traits>

#include "host/call.h"
#include "host/records.h"

namespace host {

/// Stands for a number in a test of what can be called: the number may be a literal 0, which is a null pointer too.
struct NumberOrNull {
  template <typename Parameter>
  operator Parameter() const;
};

template <typename Argument>
using AsTried = std::conditional_t<std::is_integral_v<Argument>, NumberOrNull, Argument>;

}  // namespace host

// NOLINTBEGIN(cppcoreguidelines-macro-usage,bugprone-macro-parentheses): the reason is given above; the parameters are
// names, types and lists, which parentheses would break.

#define HOST_SLOT(member, entry)                     \
  namespace host::slots {                            \
  struct member {                                    \
    static constexpr const char* kEntry = entry;     \
    static constinit inline void* address = nullptr; \
  };                                                 \
  }

#define HOST_MEMBER(member, entry, result)                              \
  HOST_SLOT(member, entry)                                              \
  template <typename... Arguments>                                      \
  inline host::result::Value member(Arguments... arguments) {           \
    return host::call<host::slots::member, host::result>(arguments...); \
  }

#define HOST_MEMBER_BESIDE(member, entry, result, types)                                                        \
  HOST_SLOT(member, entry)                                                                                      \
  template <typename... Arguments>                                                                              \
  requires(!std::is_invocable_v<void(*) types, host::AsTried<Arguments>...>) inline host::result::Value member( \
      Arguments... arguments) {                                                                                 \
    return host::call<host::slots::member, host::result>(arguments...);                                         \
  }

#define HOST_EXACT(member, entry, result, parameters, names) \
  HOST_SLOT(member, entry)                                   \
  inline host::result::Value member parameters { return host::call<host::slots::member, host::result> names; }

#define HOST_GETTER(member, entry, result, type) \
  HOST_EXACT(member, entry, result, (REALobjectStruct * object, const char* name, type* value), (object, name, value))

#define HOST_SETTER(member, entry, result, type) \
  HOST_EXACT(member, entry, result, (REALobjectStruct * object, const char* name, type value), (object, name, value))

#define HOST_VARIANT(member, entry, type) HOST_EXACT(member, entry, As<REALobjectStruct*>, (type value), (value))

#define HOST_INSERT(member, entry, type)                                    \
  HOST_SLOT(member, entry)                                                  \
  inline void member(REALarrayStruct* array, long long index, type value) { \
    host::insertElement<host::slots::member>(array, index, value);          \
  }

#define HOST_GET(member, entry, type)                                      \
  HOST_SLOT(member, entry)                                                 \
  inline void member(REALarrayStruct* array, long long index, type* out) { \
    host::getElement<host::slots::member>(array, index, out);              \
  }

#define HOST_SET(member, entry, type)                                       \
  HOST_SLOT(member, entry)                                                  \
  inline void member(REALarrayStruct* array, long long index, type value) { \
    host::setElement<host::slots::member>(array, index, value);             \
  }

// NOLINTEND(cppcoreguidelines-macro-usage,bugprone-macro-parentheses)
