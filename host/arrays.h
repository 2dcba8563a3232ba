// Arrays and their elements.
//
// Host's thread. An array that is created belongs to the caller, who hands it to the host.
#pragma once

#include <cstdint>
#include <type_traits>

#include "host/table.h"

/// The element type of an array of strings, for REALCreateArray.
inline constexpr std::uint32_t kHostArrayOfStrings = 3;

// clang-format off

//          member                  host entry                                  result                  arguments
HOST_EXACT (REALCreateArray,        "RuntimeArrayCreateSingleDimBoundedArray",  As<REALarrayStruct*>,   (std::uint32_t elementType, long long upperBound), (elementType, upperBound))
HOST_MEMBER(REALGetArrayUBound,     "RuntimeUBound",                            Word)
HOST_MEMBER(REALGetArrayStructure,  "RuntimeDirectReadStructureArray",          Word)
HOST_MEMBER(REALGetArrayInt,        "RuntimeDirectReadIntArray",                Word)
HOST_MEMBER(REALGetArrayString,     "RuntimeDirectReadStringArray",             As<REALstringStruct*>)
HOST_MEMBER(REALGetArrayObject,     "RuntimeDirectReadObjectArray",             As<REALobjectStruct*>)

// clang-format on

// --- Elements. The entry is not the operation but a dispatcher: given the array, it returns the procedure that does
// the operation on this array, or null, and then nothing happens.

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

/// The value comes before the index, unlike in insertElement(): the host's convention.
template <typename Slot, typename Value>
inline void setElement(REALarrayStruct* array, long long index, Value value) {
  void* const procedure = findElementProcedure<Slot>(array);
  if (procedure != nullptr) {
    invoke<void>(procedure, array, value, index);
  }
}

/// The procedure is called even if `out` is null. A Boolean is read as a byte: the host's true need not be 1.
template <typename Slot, typename Value>
inline void getElement(REALarrayStruct* array, long long index, Value* out) {
  void* const procedure = findElementProcedure<Slot>(array);
  if (procedure == nullptr) {
    return;
  }
  using Raw = std::conditional_t<std::is_same_v<Value, bool>, std::uint8_t, Value>;
  const Raw value = invoke<Raw>(procedure, array, index);
  if (out != nullptr) {
    *out = static_cast<Value>(value);
  }
}

}  // namespace host

// clang-format off

//          member                           host entry                         value
HOST_INSERT(REALInsertArrayValueColor,       "PluginColorArrayInsertProc",      std::uint32_t)
HOST_INSERT(REALInsertArrayValueInteger,     "PluginIntegerArrayInsertProc",    std::int64_t)
HOST_INSERT(REALInsertArrayValueUInteger,    "PluginUIntegerArrayInsertProc",   std::uint64_t)
HOST_INSERT(REALInsertArrayValueBoolean,     "PluginBooleanArrayInsertProc",    bool)
HOST_INSERT(REALInsertArrayValueCurrency,    "PluginCurrencyArrayInsertProc",   std::int64_t)
HOST_INSERT(REALInsertArrayValueInt64,       "PluginInt64ArrayInsertProc",      std::int64_t)
HOST_INSERT(REALInsertArrayValueInt32,       "PluginInt32ArrayInsertProc",      std::int32_t)
HOST_INSERT(REALInsertArrayValueInt16,       "PluginInt16ArrayInsertProc",      std::int16_t)
HOST_INSERT(REALInsertArrayValueInt8,        "PluginInt8ArrayInsertProc",       std::int8_t)
HOST_INSERT(REALInsertArrayValueUInt64,      "PluginUInt64ArrayInsertProc",     std::uint64_t)
HOST_INSERT(REALInsertArrayValueUInt32,      "PluginUInt32ArrayInsertProc",     std::uint32_t)
HOST_INSERT(REALInsertArrayValueUInt16,      "PluginUInt16ArrayInsertProc",     std::uint16_t)
HOST_INSERT(REALInsertArrayValueUInt8,       "PluginUInt8ArrayInsertProc",      std::uint8_t)
HOST_INSERT(REALInsertArrayValueSingle,      "PluginSingleArrayInsertProc",     float)
HOST_INSERT(REALInsertArrayValueDouble,      "PluginDoubleArrayInsertProc",     double)
HOST_INSERT(REALInsertArrayValueString,      "PluginStringArrayInsertProc",     REALstringStruct*)
HOST_INSERT(REALInsertArrayValueText,        "PluginTextArrayInsertProc",       const RuntimeText*)
HOST_INSERT(REALInsertArrayValueObject,      "PluginObjectArrayInsertProc",     REALobjectStruct*)

HOST_GET   (REALGetArrayValueColor,          "PluginColorArrayGetProc",         std::uint32_t)
HOST_GET   (REALGetArrayValueInteger,        "PluginIntegerArrayGetProc",       std::int64_t)
HOST_GET   (REALGetArrayValueUInteger,       "PluginUIntegerArrayGetProc",      std::uint64_t)
HOST_GET   (REALGetArrayValueBoolean,        "PluginBooleanArrayGetProc",       bool)
HOST_GET   (REALGetArrayValueCurrency,       "PluginCurrencyArrayGetProc",      std::int64_t)
HOST_GET   (REALGetArrayValueInt64,          "PluginInt64ArrayGetProc",         std::int64_t)
HOST_GET   (REALGetArrayValueInt32,          "PluginInt32ArrayGetProc",         std::int32_t)
HOST_GET   (REALGetArrayValueInt16,          "PluginInt16ArrayGetProc",         std::int16_t)
HOST_GET   (REALGetArrayValueInt8,           "PluginInt8ArrayGetProc",          std::int8_t)
HOST_GET   (REALGetArrayValueUInt64,         "PluginUInt64ArrayGetProc",        std::uint64_t)
HOST_GET   (REALGetArrayValueUInt32,         "PluginUInt32ArrayGetProc",        std::uint32_t)
HOST_GET   (REALGetArrayValueUInt16,         "PluginUInt16ArrayGetProc",        std::uint16_t)
HOST_GET   (REALGetArrayValueUInt8,          "PluginUInt8ArrayGetProc",         std::uint8_t)
HOST_GET   (REALGetArrayValueSingle,         "PluginSingleArrayGetProc",        float)
HOST_GET   (REALGetArrayValueDouble,         "PluginDoubleArrayGetProc",        double)
HOST_GET   (REALGetArrayValueString,         "PluginStringArrayGetProc",        REALstringStruct*)
HOST_GET   (REALGetArrayValueText,           "PluginTextArrayGetProc",          const RuntimeText*)
HOST_GET   (REALGetArrayValueObject,         "PluginObjectArrayGetProc",        REALobjectStruct*)

HOST_SET   (REALSetArrayValueColor,          "PluginColorArraySetProc",         std::uint32_t)
HOST_SET   (REALSetArrayValueInteger,        "PluginIntegerArraySetProc",       std::int64_t)
HOST_SET   (REALSetArrayValueUInteger,       "PluginUIntegerArraySetProc",      std::uint64_t)
HOST_SET   (REALSetArrayValueBoolean,        "PluginBooleanArraySetProc",       bool)
HOST_SET   (REALSetArrayValueCurrency,       "PluginCurrencyArraySetProc",      std::int64_t)
HOST_SET   (REALSetArrayValueInt64,          "PluginInt64ArraySetProc",         std::int64_t)
HOST_SET   (REALSetArrayValueInt32,          "PluginInt32ArraySetProc",         std::int32_t)
HOST_SET   (REALSetArrayValueInt16,          "PluginInt16ArraySetProc",         std::int16_t)
HOST_SET   (REALSetArrayValueInt8,           "PluginInt8ArraySetProc",          std::int8_t)
HOST_SET   (REALSetArrayValueUInt64,         "PluginUInt64ArraySetProc",        std::uint64_t)
HOST_SET   (REALSetArrayValueUInt32,         "PluginUInt32ArraySetProc",        std::uint32_t)
HOST_SET   (REALSetArrayValueUInt16,         "PluginUInt16ArraySetProc",        std::uint16_t)
HOST_SET   (REALSetArrayValueUInt8,          "PluginUInt8ArraySetProc",         std::uint8_t)
HOST_SET   (REALSetArrayValueSingle,         "PluginSingleArraySetProc",        float)
HOST_SET   (REALSetArrayValueDouble,         "PluginDoubleArraySetProc",        double)
HOST_SET   (REALSetArrayValueString,         "PluginStringArraySetProc",        REALstringStruct*)
HOST_SET   (REALSetArrayValueText,           "PluginTextArraySetProc",          const RuntimeText*)
HOST_SET   (REALSetArrayValueObject,         "PluginObjectArraySetProc",        REALobjectStruct*)

// clang-format on

// --- By the type of the last parameter

inline void REALInsertArrayValue(REALarrayStruct* array, long long index, short value) {
  REALInsertArrayValueInt16(array, index, value);
}
inline void REALInsertArrayValue(REALarrayStruct* array, long long index, unsigned short value) {
  REALInsertArrayValueUInt16(array, index, value);
}
inline void REALInsertArrayValue(REALarrayStruct* array, long long index, double value) {
  REALInsertArrayValueDouble(array, index, value);
}
inline void REALInsertArrayValue(REALarrayStruct* array, long long index, float value) {
  REALInsertArrayValueSingle(array, index, value);
}
inline void REALInsertArrayValue(REALarrayStruct* array, long long index, REALstringStruct* value) {
  REALInsertArrayValueString(array, index, value);
}
inline void REALInsertArrayValue(REALarrayStruct* array, long long index, REALobjectStruct* value) {
  REALInsertArrayValueObject(array, index, value);
}

inline void REALSetArrayValue(REALarrayStruct* array, long long index, short value) {
  REALSetArrayValueInt16(array, index, value);
}
inline void REALSetArrayValue(REALarrayStruct* array, long long index, unsigned short value) {
  REALSetArrayValueUInt16(array, index, value);
}
inline void REALSetArrayValue(REALarrayStruct* array, long long index, double value) {
  REALSetArrayValueDouble(array, index, value);
}
inline void REALSetArrayValue(REALarrayStruct* array, long long index, float value) {
  REALSetArrayValueSingle(array, index, value);
}
inline void REALSetArrayValue(REALarrayStruct* array, long long index, REALstringStruct* value) {
  REALSetArrayValueString(array, index, value);
}
inline void REALSetArrayValue(REALarrayStruct* array, long long index, REALobjectStruct* value) {
  REALSetArrayValueObject(array, index, value);
}
inline void REALSetArrayValue(REALarrayStruct* array, long long index, const RuntimeText* value) {
  REALSetArrayValueText(array, index, value);
}

inline void REALGetArrayValue(REALarrayStruct* array, long long index, short* out) {
  REALGetArrayValueInt16(array, index, out);
}
inline void REALGetArrayValue(REALarrayStruct* array, long long index, unsigned short* out) {
  REALGetArrayValueUInt16(array, index, out);
}
inline void REALGetArrayValue(REALarrayStruct* array, long long index, REALstringStruct** out) {
  REALGetArrayValueString(array, index, out);
}
inline void REALGetArrayValue(REALarrayStruct* array, long long index, const RuntimeText** out) {
  REALGetArrayValueText(array, index, out);
}
inline void REALGetArrayValue(REALarrayStruct* array, long long index, REALobjectStruct** out) {
  REALGetArrayValueObject(array, index, out);
}
inline void REALGetArrayValue(REALarrayStruct* array, long long index, double* out) {
  REALGetArrayValueDouble(array, index, out);
}
inline void REALGetArrayValue(REALarrayStruct* array, long long index, float* out) {
  REALGetArrayValueSingle(array, index, out);
}
