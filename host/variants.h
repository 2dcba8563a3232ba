// Variants: objects that hold one value of any type.
//
// Host's thread. A new variant belongs to the caller, who gives it back with REALUnlockObject. The types are those of
// host/property_getters.h; an OSType is a code of four characters in 32 bits.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "host/handles.h"
#include "host/table.h"

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
