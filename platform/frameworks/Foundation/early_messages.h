// Messages for this library's first initialisers.
//
// The selectors that a source file's message expressions use are registered by an initialiser of that file, which may
// run later. These functions find class and selector by name instead, and so work as soon as Foundation itself is
// loaded.
#pragma once

#include <objc/message.h>
#include <objc/runtime.h>

namespace platform {

inline id classNamed(const char* name) { return reinterpret_cast<id>(objc_getClass(name)); }

template <typename... Arguments>
id sendEarly(id receiver, const char* selector, Arguments... arguments) {
  SEL registered = sel_registerName(selector);
  using Method = id (*)(id, SEL, Arguments...);
  return reinterpret_cast<Method>(objc_msg_lookup(receiver, registered))(receiver, registered, arguments...);
}

}  // namespace platform
