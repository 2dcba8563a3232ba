// Properties of objects by name, and variants: objects that hold one value of any type.
//
// Host's thread. Integer and UInteger are 64 bits wide here, a Currency is a 64-bit integer of ten-thousandths, a Color
// 32 bits, an OSType a code of four characters in 32 bits, a PString bytes with their count in front.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "host/table.h"

// --- Getters: member(object, name, pointer to the value) returns whether the host had a value. Without an entry the
// value stays as it was, and except for a Boolean's also when the host does not write it.

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

// Defined below; its result is TrueIfLowByte:
HOST_SLOT  (REALGetPropValueBoolean,        "REALGetPropValueBool")

// clang-format on

/// The host writes into a separate byte, which `value` receives as false or true whatever the host returns. `value`
/// must not be null; it stays as it was only when the host lacks the entry.
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

// --- Setters: member(object, name, value) returns whether the host took the value.

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

// --- Variants. A new variant belongs to the caller, who releases it with REALUnlockObject.

// clang-format off

//           member                     host entry                  value
HOST_VARIANT(REALNewVariantString,      "StringToVariant",          REALstringStruct*)
HOST_VARIANT(REALNewVariantPtr,         "PtrToVariant",             void*)
HOST_VARIANT(REALNewVariantCString,     "CStringToVariant",         const char*)
HOST_VARIANT(REALNewVariantWString,     "WStringToVariant",         const wchar_t*)
HOST_VARIANT(REALNewVariantPString,     "PStringToVariant",         const unsigned char*)
HOST_VARIANT(REALNewVariantOSType,      "OSTypeToVariant",          std::uint32_t)
HOST_VARIANT(REALNewVariantCFStringRef, "CFStringRefToVariant",     CFStringRef)
HOST_VARIANT(REALNewVariantInt32,       "Int32ToVariant",           std::int32_t)
HOST_VARIANT(REALNewVariantInteger,     "IntegerToVariant",         std::int64_t)
HOST_VARIANT(REALNewVariantDouble,      "DoubleToVariant",          double)
HOST_VARIANT(REALNewVariantBoolean,     "BooleanToVariant",         bool)
HOST_VARIANT(REALNewVariantColor,       "ColorToVariant",           std::uint32_t)
HOST_VARIANT(REALNewVariantUInt32,      "UInt32ToVariant",          std::uint32_t)
HOST_VARIANT(REALNewVariantInt64,       "Int64ToVariant",           std::int64_t)
HOST_VARIANT(REALNewVariantUInt64,      "UInt64ToVariant",          std::uint64_t)
HOST_VARIANT(REALNewVariantSingle,      "SingleToVariant",          float)
HOST_VARIANT(REALNewVariantCurrency,    "CurrencyToVariant",        std::int64_t)

//           member                     host entry                  result
HOST_MEMBER (REALNewVariantStructure,   "PluginStructureToVariant",     As<REALobjectStruct*>)
HOST_MEMBER (REALGetVariantStructure,   "PluginStructureFromVariant",   TrueIfLowByte)

// clang-format on
