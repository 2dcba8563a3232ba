// Objects, classes and their methods.
//
// Host's thread. A method's address is the host's and is called through host::invoke() with the object first. A new
// instance belongs to the caller, who releases it with REALUnlockObject.
#pragma once

#include <type_traits>

#include "host/table.h"

// clang-format off

//          member                                  host entry                                  result              arguments
HOST_MEMBER(REALLockObject,                         "REALLockObject",                           Nothing)
HOST_MEMBER(REALUnlockObject,                       "REALUnlockObject",                         Nothing)
HOST_EXACT (REALLoadObjectMethod,                   "REALLoadObjectMethod",                     As<void*>,          (REALobjectStruct* object, const char* declaration), (object, declaration))
HOST_MEMBER(REALObjectIsA,                          "RuntimeObjectIsa",                         TrueIfLowByte)
HOST_MEMBER(REALGetClassRef,                        "pluginObjectType",                         As<REALclassRefStruct*>)
HOST_EXACT (REALnewInstanceWithClass,               "CreateInstance",                           As<REALobjectStruct*>, (REALclassRefStruct* classRef), (classRef))
HOST_MEMBER(REALnewInstanceOfClass,                 "PluginNewInstanceOfClass",                 As<REALobjectStruct*>)
HOST_MEMBER(REALLoadSharedMethod,                   "PluginLoadSharedMethod",                   As<void*>)
HOST_MEMBER(REALGetEventInstance,                   "GetEventInstance",                         As<void*>)
HOST_MEMBER(REALGetDelegateInvoker,                 "PluginGetDelegateInvoker",                 As<void*>)
HOST_MEMBER(REALCallFunctionWithExceptionHandler,   "PluginCallFunctionWithExceptionHandler",   Word)
HOST_MEMBER(REALRaiseException,                     "RuntimeRaiseException",                    Nothing)
HOST_MEMBER(REALInterfaceRoutine,                   "GetInterfaceRoutine",                      As<void*>)
HOST_MEMBER(REALGetPluginData,                      "PluginGetPluginData",                      As<void*>)

// Defined below:
HOST_SLOT  (REALnewInstance,                        "PluginNewInstance")
HOST_SLOT  (REALLoadFrameworkMethod,                "REALLoadGlobalMethod")

// clang-format on

/// A new instance for a handle other than a class reference; null if there is none.
template <typename Handle>
requires(!std::is_same_v<std::remove_cv_t<Handle>, REALclassRefStruct>) inline REALobjectStruct* REALnewInstance(
    Handle* handle) {
  return host::call<host::slots::REALnewInstance, host::As<REALobjectStruct*>>(handle);
}

/// A new instance of a class: not the entry for other handles.
inline REALobjectStruct* REALnewInstance(REALclassRefStruct* classRef) { return REALnewInstanceWithClass(classRef); }

/// The address of a method of the host's own framework, or null.
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
