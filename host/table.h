// What a line of the host-call tables is made of.
//
// A line is a macro because it makes a function and the slot that belongs to it, named after each other; nothing else
// in the language does both at once. There are these three, used at global scope and nowhere outside this folder:
//
//   HOST_SLOT(member, entry)
//     The slot alone, host::slots::member, for the few members whose body is written out.
//   HOST_MEMBER(member, entry, result)
//     A member whose argument list is not fixed here: it passes on the arguments that it is given, in order, by value
//     and at their own width. All forms that it is called in share its slot. Whoever knows the list makes it a
//     HOST_EXACT.
//   HOST_EXACT(member, entry, result, (parameters), (names))
//     A member with exactly these parameters; `names` repeats their names.
//
// `result` is one of the result kinds of host/call.h. A result that nothing is known about is a Word: all 64 bits, the
// most that any handle, pointer or integer can be; a member that has no result at all then answers nothing meaningful.
//
// Members are inline and slots are inline variables: what a program does not call does not become part of it.
#pragma once

#include "host/call.h"

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

#define HOST_EXACT(member, entry, result, parameters, names) \
  HOST_SLOT(member, entry)                                   \
  inline host::result::Value member parameters { return host::call<host::slots::member, host::result> names; }

// NOLINTEND(cppcoreguidelines-macro-usage,bugprone-macro-parentheses)
