// The types of the host's language: their names in declarations, and how they travel to and from a plugin's functions.
//
// Immutable data; any thread may use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace devhost {

enum class Type {
  kBoolean,
  kInteger,
  kUInteger,
  kInt8,
  kInt16,
  kInt32,
  kInt64,
  kUInt8,
  kUInt16,
  kUInt32,
  kUInt64,
  kSingle,
  kDouble,
  kCurrency,  ///< a signed 64-bit count of ten-thousandths
  kColor,     ///< an unsigned 32-bit number
  kString,
  kText,    ///< a pointer for this host, which has strings only
  kObject,  ///< an instance of any class, Variant included
  kPtr,
  kCString,      ///< NUL-terminated bytes, borrowed
  kWString,      ///< NUL-terminated wchar_t, borrowed
  kPString,      ///< a length byte and as many bytes, borrowed
  kCFStringRef,  ///< passed on as a pointer; this host neither retains nor reads it
  kOSType,       ///< four characters in an unsigned 32-bit number
};

/// In which form a value of a type is kept and passed.
enum class Form { kBoolean, kSigned, kUnsigned, kReal, kString, kObject, kPointer };

/// A type's properties.
struct TypeFacts {
  Type type;
  Form form;
  const char* name;
  /// Bytes of a parameter, of a result, and of what a plugin writes through a by-reference parameter.
  std::size_t width;
};

/// Facts of `type`; always present.
const TypeFacts& factsOf(Type type);

/// The built-in type of that name, case-insensitive; nothing for the name of a class.
std::optional<Type> findType(std::string_view name);

/// Case-insensitive in ASCII, as the host's language compares names.
bool sameName(std::string_view a, std::string_view b);
std::string lowerCase(std::string_view name);

}  // namespace devhost
