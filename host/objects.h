// Objects, classes and their methods.
//
// Host's thread. A method's address is the host's and is called through host::invoke() with the object first.
#pragma once

#include "host/handles.h"
#include "host/table.h"

// clang-format off

//          member                               host entry                                   result
HOST_EXACT (REALLoadObjectMethod,                "REALLoadObjectMethod",                      As<void*>, (REALobjectStruct* object, const char* declaration), (object, declaration))

// clang-format on

HOST_SLOT(REALLoadFrameworkMethod, "REALLoadGlobalMethod")
/// The address of a method that the host's own framework declares, or null.
inline void* REALLoadFrameworkMethod(const char* declaration) {
  return host::call<host::slots::REALLoadFrameworkMethod, host::As<void*>>(static_cast<void*>(nullptr), declaration);
}

/// As REALLoadFrameworkMethod. The module is deliberately ignored: the host always receives a null module.
inline void* REALLoadGlobalMethod(const void* /*module*/, const char* declaration) {
  return REALLoadFrameworkMethod(declaration);
}

namespace host {

/// As find(), for a slot whose text is the declaration of a framework method instead of the name of an entry.
template <typename Slot>
inline void* findFrameworkMethod() {
  if (Slot::address == nullptr) [[unlikely]] {
    Slot::address = REALLoadFrameworkMethod(Slot::kEntry);
  }
  return Slot::address;
}

}  // namespace host
