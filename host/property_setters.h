// Properties of objects, written by name: member(object, name, value) answers whether the host took the value.
//
// Host's thread. The types are those of host/property_getters.h.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "host/handles.h"
#include "host/table.h"

// clang-format off

//          member                          host entry                      result          value
HOST_SETTER(REALSetPropValueString,         "REALSetPropValueString",       TrueIfLowByte,  REALstringStruct*)
HOST_SETTER(REALSetPropValueDouble,         "REALSetPropValueDouble",       TrueIfLowByte,  double)
HOST_SETTER(REALSetPropValueObject,         "REALSetPropValueObject",       TrueIfLowByte,  REALobjectStruct*)
HOST_SETTER(REALSetPropValueColor,          "REALSetPropValueColor",        TrueIfLowByte,  std::uint32_t)
HOST_SETTER(REALSetPropValueCurrency,       "REALSetPropValueCurrency",     TrueIfLowByte,  std::int64_t)
HOST_SETTER(REALSetPropValueInteger,        "REALSetPropValueInteger",      TrueIfLowByte,  std::int64_t)
HOST_SETTER(REALSetPropValueUInteger,       "REALSetPropValueUInteger",     TrueIfLowByte,  std::uint64_t)
HOST_SETTER(REALSetPropValueUInt32,         "REALSetPropValueUInt32",       TrueIfLowByte,  std::uint32_t)
HOST_SETTER(REALSetPropValueUInt64,         "REALSetPropValueUInt64",       TrueIfLowByte,  std::uint64_t)
HOST_SETTER(REALSetPropValueInt64,          "REALSetPropValueInt64",        TrueIfLowByte,  std::int64_t)
HOST_SETTER(REALSetPropValueInt16,          "REALSetPropValueInt16",        TrueIfLowByte,  std::int16_t)
HOST_SETTER(REALSetPropValueUInt16,         "REALSetPropValueUInt16",       TrueIfLowByte,  std::uint16_t)
HOST_SETTER(REALSetPropValueInt8,           "REALSetPropValueInt8",         TrueIfLowByte,  std::int8_t)
HOST_SETTER(REALSetPropValueBoolean,        "REALSetPropValueBoolean",      TrueIfLowByte,  bool)
HOST_SETTER(REALSetPropValueSingle,         "REALSetPropValueSingle",       TrueIfLowByte,  float)
HOST_SETTER(REALSetPropValuePtr,            "REALSetPropValuePtr",          TrueIfLowByte,  void*)
HOST_SETTER(REALSetPropValueCString,        "REALSetPropValueCString",      TrueIfLowByte,  const char*)
HOST_SETTER(REALSetPropValueWString,        "REALSetPropValueWString",      TrueIfLowByte,  const wchar_t*)
HOST_SETTER(REALSetPropValuePString,        "REALSetPropValuePString",      TrueIfLowByte,  const unsigned char*)
HOST_SETTER(REALSetPropValueCFStringRef,    "REALSetPropValueCFStringRef",  TrueIfLowByte,  CFStringRef)
HOST_SETTER(REALSetPropValueInt32,          "REALSetPropValueInt",          TrueIfLowByte,  std::int32_t)
// Deliberate: the host's Boolean setter serves 8-bit unsigned properties too.
HOST_SETTER(REALSetPropValueUInt8,          "REALSetPropValueBoolean",      TrueIfLowByte,  std::uint8_t)

// clang-format on

// --- By the type of the last parameter

inline bool REALSetPropValue(REALobjectStruct* object, const char* name, REALstringStruct* value) {
  return REALSetPropValueString(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, double value) {
  return REALSetPropValueDouble(object, name, value);
}
/// Deliberately the Ptr setter, not the Object setter.
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, REALobjectStruct* value) {
  return REALSetPropValuePtr(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, unsigned short value) {
  return REALSetPropValueUInt16(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, short value) {
  return REALSetPropValueInt16(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, float value) {
  return REALSetPropValueSingle(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, const char* value) {
  return REALSetPropValueCString(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, const wchar_t* value) {
  return REALSetPropValueWString(object, name, value);
}
inline bool REALSetPropValue(REALobjectStruct* object, const char* name, CFStringRef value) {
  return REALSetPropValueCFStringRef(object, name, value);
}
