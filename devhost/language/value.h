// Value: any value of the host's language, for arguments and results of calls, and elements of arrays.
//
// Numbers, truth values, text and handles convert to a Value by themselves, so that a call reads like one in the host's
// language: plugin.call("GetName", {1, "before"}). One thread at a time.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "devhost/language/declaration.h"
#include "devhost/runtime/handles.h"

namespace devhost {

class String;
class Object;
class Array;

/// The 8 bytes of a host's slot as they are, for a by-reference argument whose upper half matters.
struct RawSlot {
  std::uint64_t bits = 0;
  friend bool operator==(const RawSlot&, const RawSlot&) = default;
};

/// What() is one line that says what was expected.
class ValueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Value {
 public:
  /// std::monostate is nothing at all, such as the result of a method without one; nullptr is nil of any handle type.
  using Storage = std::variant<std::monostate, std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string,
                               Ref<String>, Ref<Object>, Ref<Array>, void*, RawSlot>;

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
  Value(Ref<String> value) : storage_(std::move(value)) {}
  Value(Ref<Object> value) : storage_(std::move(value)) {}
  Value(Ref<Array> value) : storage_(std::move(value)) {}
  Value(RawSlot value) : storage_(value) {}
  /// Use pointer(): an address would otherwise become True.
  Value(const void*) = delete;
  static Value pointer(void* value) {
    Value result;
    result.storage_ = value;
    return result;
  }

  const Storage& storage() const { return storage_; }
  bool isNothing() const { return std::holds_alternative<std::monostate>(storage_); }
  /// Nil, a null pointer, or a reference to nothing.
  bool isNil() const;

  // What the value is; each throws ValueError for a value of another kind.
  bool boolean() const;
  std::int64_t integer() const;          ///< also of an unsigned number that fits
  std::uint64_t unsignedNumber() const;  ///< also of a signed number that fits
  double real() const;                   ///< also of a whole number
  std::string text() const;              ///< the bytes of a string; empty for nil
  Ref<String> string() const;
  Ref<Object> object() const;
  Ref<Array> array() const;
  void* pointer() const;

  /// Numbers by value, strings by their bytes, objects and arrays by identity.
  friend bool operator==(const Value& a, const Value& b);
  /// As a person reads it: True, -3, 0.5, "text", nil, ["a", "b"]. Bytes of a text are put out as they are.
  friend std::ostream& operator<<(std::ostream& out, const Value& value);

 private:
  Storage storage_;
};

using Values = std::vector<Value>;

class Host;

/// `value` in exactly the form that an argument or result of `type` has; texts become strings of the host. Throws
/// ValueError that says what the type admits.
Value convertToArgument(Host& host, const Value& value, const DeclaredType& type);
/// The zero, empty text or nil that a variable of the type begins with.
Value initialValue(Host& host, const DeclaredType& type);

/// A decimal text of 15 digits, or as many more as it takes to read back as the same number; "nan", "inf", "-inf" for
/// what is none.
std::string numberText(double number);

}  // namespace devhost
