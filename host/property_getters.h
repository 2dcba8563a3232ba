// Properties of objects, read by name: member(object, name, pointer to the value) answers whether the host had a value.
//
// Host's thread. The host's Integer and UInteger are 64 bits wide here, a Currency is a 64-bit integer of
// ten-thousandths, a Color 32 bits, a PString bytes with their count in front. Without an entry the value is left
// alone, and but for a Boolean's also when the host does not write it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "host/handles.h"
#include "host/table.h"

// clang-format off

//          member                          host entry                      result          value
HOST_GETTER(REALGetPropValueString,         "REALGetPropValueString",       TrueIfAnyBit,   REALstringStruct*)
HOST_GETTER(REALGetPropValueDouble,         "REALGetPropValueDouble",       TrueIfAnyBit,   double)
HOST_GETTER(REALGetPropValueObject,         "REALGetPropValueObject",       TrueIfAnyBit,   REALobjectStruct*)
HOST_GETTER(REALGetPropValuePtr,            "REALGetPropValuePtr",          TrueIfAnyBit,   void*)
HOST_GETTER(REALGetPropValueCString,        "REALGetPropValueCString",      TrueIfAnyBit,   const char*)
HOST_GETTER(REALGetPropValueWString,        "REALGetPropValueWString",      TrueIfAnyBit,   const wchar_t*)
HOST_GETTER(REALGetPropValuePString,        "REALGetPropValuePString",      TrueIfAnyBit,   const unsigned char*)
HOST_GETTER(REALGetPropValueCFStringRef,    "REALGetPropValueCFStringRef",  TrueIfAnyBit,   CFStringRef)
HOST_GETTER(REALGetPropValueInt64,          "REALGetPropValueInt64",        TrueIfLowByte,  std::int64_t)
HOST_GETTER(REALGetPropValueUInt64,         "REALGetPropValueUInt64",       TrueIfLowByte,  std::uint64_t)
HOST_GETTER(REALGetPropValueUInt32,         "REALGetPropValueUInt32",       TrueIfLowByte,  std::uint32_t)
HOST_GETTER(REALGetPropValueUInt16,         "REALGetPropValueUInt16",       TrueIfLowByte,  std::uint16_t)
HOST_GETTER(REALGetPropValueInt16,          "REALGetPropValueInt16",        TrueIfLowByte,  std::int16_t)
HOST_GETTER(REALGetPropValueSingle,         "REALGetPropValueSingle",       TrueIfLowByte,  float)
HOST_GETTER(REALGetPropValueColor,          "REALGetPropValueColor",        TrueIfLowByte,  std::uint32_t)
HOST_GETTER(REALGetPropValueCurrency,       "REALGetPropValueCurrency",     TrueIfLowByte,  std::int64_t)
HOST_GETTER(REALGetPropValueInteger,        "REALGetPropValueInteger",      TrueIfLowByte,  std::int64_t)
HOST_GETTER(REALGetPropValueUInteger,       "REALGetPropValueUInteger",     TrueIfLowByte,  std::uint64_t)
HOST_GETTER(REALGetPropValueInt32,          "REALGetPropValueInt",          TrueIfAnyBit,   std::int32_t)

// Written out below; its result is TrueIfLowByte:
HOST_SLOT  (REALGetPropValueBoolean,        "REALGetPropValueBool")

// clang-format on

/// The host writes into a byte of ours, which reaches `value` as false or true whatever the host answers. `value` must
/// not be null; it is left alone only when the host lacks the entry.
inline bool REALGetPropValueBoolean(REALobjectStruct* object, const char* name, bool* value) {
  void* const entry = host::find<host::slots::REALGetPropValueBoolean>();
  if (entry == nullptr) {
    return false;
  }
  std::uint8_t byte = 0;
  const bool found = host::callKnown<host::TrueIfLowByte>(entry, object, name, &byte);
  *value = byte != 0;
  return found;
}

// --- By the type of the last parameter

inline bool REALGetPropValue(REALobjectStruct* object, const char* name, short* value) {
  return REALGetPropValueInt16(object, name, value);
}
inline bool REALGetPropValue(REALobjectStruct* object, const char* name, unsigned short* value) {
  return REALGetPropValueUInt16(object, name, value);
}
inline bool REALGetPropValue(REALobjectStruct* object, const char* name, double* value) {
  return REALGetPropValueDouble(object, name, value);
}
inline bool REALGetPropValue(REALobjectStruct* object, const char* name, float* value) {
  return REALGetPropValueSingle(object, name, value);
}
inline bool REALGetPropValue(REALobjectStruct* object, const char* name, REALstringStruct** value) {
  return REALGetPropValueString(object, name, value);
}
inline bool REALGetPropValue(REALobjectStruct* object, const char* name, REALobjectStruct** value) {
  return REALGetPropValueObject(object, name, value);
}
inline bool REALGetPropValue(REALobjectStruct* object, const char* name, CFStringRef* value) {
  return REALGetPropValueCFStringRef(object, name, value);
}
