// Value: any value of the host's language, for arguments and results of calls. Plain data: strings and arrays are
// copies of what a plugin holds.
//
// Numbers, truth values, text and objects convert to a Value by themselves, so that a call reads like one in the host's
// language: plugin.call("GetName", {1, "before"}). One thread at a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "devhost/language/declaration.h"

namespace devhost {

class Object;
class Value;
using Values = std::vector<Value>;

/// The 8 bytes of a host's slot as they are, for a by-reference argument whose upper half matters.
struct RawSlot {
  std::uint64_t bits = 0;
  friend bool operator==(const RawSlot&, const RawSlot&) = default;
};

/// What() is one line that states what was expected.
class ValueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Value {
 public:
  /// std::monostate is nothing at all, such as the result of a method without one; nullptr is a nil string, array or
  /// object. Values are the elements of an array.
  using Storage = std::variant<std::monostate, std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string,
                               Values, std::shared_ptr<Object>, void*, RawSlot>;

  Value() = default;
  Value(std::nullptr_t) : storage_(nullptr) {}
  Value(bool value) : storage_(value) {}
  template <typename T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
  Value(T value) {
    if constexpr (std::is_signed_v<T>) {
      storage_ = static_cast<std::int64_t>(value);
    } else {
      storage_ = static_cast<std::uint64_t>(value);
    }
  }
  Value(double value) : storage_(value) {}
  Value(const char* text) : storage_(std::string(text)) {}
  Value(std::string text) : storage_(std::move(text)) {}
  Value(std::string_view text) : storage_(std::string(text)) {}
  Value(std::shared_ptr<Object> object);
  Value(RawSlot value) : storage_(value) {}
  /// Use pointer(): an address would otherwise become True.
  Value(const void*) = delete;
  static Value pointer(void* value);
  static Value array(Values elements);

  const Storage& storage() const { return storage_; }
  bool isNothing() const { return std::holds_alternative<std::monostate>(storage_); }
  /// Nil or a null pointer.
  bool isNil() const;

  // Each throws ValueError for a value of another kind.
  bool boolean() const;
  std::int64_t integer() const;          ///< also of an unsigned number that fits
  std::uint64_t unsignedNumber() const;  ///< also of a signed number that fits
  double real() const;                   ///< also of a whole number
  std::string text() const;              ///< empty for nil
  std::shared_ptr<Object> object() const;
  const Values& elements() const;
  std::vector<std::string> texts() const;  ///< of the elements
  void* pointer() const;

  /// Numbers by value, objects by identity.
  friend bool operator==(const Value& a, const Value& b);
  /// As a person reads it: True, -3, 0.5, "text", nil, ["a", "b"]. Bytes of a text are written as they are.
  friend std::ostream& operator<<(std::ostream& out, const Value& value);

 private:
  Storage storage_;
};

/// `value` in exactly the form that an argument or result of `type` has; nothing when the type does not admit it.
std::optional<Value> tryConvert(const Value& value, const DeclaredType& type);
/// The same. Throws ValueError that states what the type admits.
Value convert(const Value& value, const DeclaredType& type);
/// The values that a type admits, in words: "Int8 (-128 to 127)".
std::string admittedValues(const DeclaredType& type);

/// The zero, empty text or nil that a variable of the type begins with.
Value initialValue(const DeclaredType& type);

/// A decimal text of 15 digits, or as many more as it takes to read back as the same number; "nan", "inf", "-inf" for
/// numbers that are not finite.
std::string numberText(double number);

}  // namespace devhost
