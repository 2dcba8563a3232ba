// Arrays and their elements.
//
// Host's thread. An array that is created belongs to the caller, who hands it to the host.
#pragma once

#include <cstdint>

#include "host/handles.h"
#include "host/table.h"

/// The element type of an array of strings, for REALCreateArray.
inline constexpr std::uint32_t kHostArrayOfStrings = 3;

// clang-format off

//          member                host entry                                  result
HOST_EXACT (REALCreateArray,      "RuntimeArrayCreateSingleDimBoundedArray",  As<REALarrayStruct*>, (std::uint32_t elementType, long long upperBound), (elementType, upperBound))

// clang-format on

// --- Elements. The entry is not the operation but a dispatcher: given the array, it answers the procedure that does
// the
// --- operation on this array, or null, and then nothing happens.

namespace host {

/// The element procedure of `array`, or null.
template <typename Slot>
inline void* findElementProcedure(REALarrayStruct* array) {
  void* const dispatcher = find<Slot>();
  return dispatcher != nullptr ? invoke<void*>(dispatcher, array) : nullptr;
}

template <typename Slot, typename Value>
inline void insertElement(REALarrayStruct* array, long long index, Value value) {
  void* const procedure = findElementProcedure<Slot>(array);
  if (procedure != nullptr) {
    invoke<void>(procedure, array, index, value);
  }
}

}  // namespace host

HOST_SLOT(REALInsertArrayValueString, "PluginStringArrayInsertProc")
inline void REALInsertArrayValueString(REALarrayStruct* array, long long index, REALstringStruct* value) {
  host::insertElement<host::slots::REALInsertArrayValueString>(array, index, value);
}
