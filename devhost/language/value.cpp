#include "devhost/language/value.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <ostream>

#include "devhost/runtime/arrays.h"
#include "devhost/runtime/host.h"
#include "devhost/runtime/objects.h"
#include "devhost/runtime/strings.h"

namespace devhost {
namespace {

template <typename T>
const T* as(const Value& value) {
  return std::get_if<T>(&value.storage());
}

std::string shown(const Value& value);

[[noreturn]] void failConversion(const Value& value, const std::string& expected) {
  throw ValueError("expected " + expected + ", got " + shown(value));
}

Value convertNumber(const Value& value, const TypeFacts& facts) {
  const unsigned bits = static_cast<unsigned>(facts.width) * 8;
  if (facts.form == Form::kSigned) {
    const std::int64_t highest = std::numeric_limits<std::int64_t>::max() >> (64 - bits);
    const std::int64_t lowest = -highest - 1;
    const std::string expected =
        std::string(facts.name) + " (" + std::to_string(lowest) + " to " + std::to_string(highest) + ")";
    const auto* const whole = as<std::int64_t>(value);
    const auto* const natural = as<std::uint64_t>(value);
    if ((whole == nullptr && natural == nullptr) || (whole != nullptr && (*whole < lowest || *whole > highest)) ||
        (natural != nullptr && *natural > static_cast<std::uint64_t>(highest))) {
      failConversion(value, expected);
    }
    return value.integer();
  }
  const std::uint64_t highest = std::numeric_limits<std::uint64_t>::max() >> (64 - bits);
  const std::string expected = std::string(facts.name) + " (0 to " + std::to_string(highest) + ")";
  const auto* const whole = as<std::int64_t>(value);
  const auto* const natural = as<std::uint64_t>(value);
  if ((whole == nullptr && natural == nullptr) ||
      (whole != nullptr && (*whole < 0 || static_cast<std::uint64_t>(*whole) > highest)) ||
      (natural != nullptr && *natural > highest)) {
    failConversion(value, expected);
  }
  return value.unsignedNumber();
}

Value convertReal(const Value& value, const TypeFacts& facts) {
  if (as<double>(value) == nullptr && as<std::int64_t>(value) == nullptr && as<std::uint64_t>(value) == nullptr) {
    failConversion(value, std::string("a number (") + facts.name + ")");
  }
  return facts.type == Type::kSingle ? static_cast<double>(static_cast<float>(value.real())) : value.real();
}

Value convertText(Host& host, const Value& value) {
  if (value.isNil()) {
    return Ref<String>();
  }
  if (as<Ref<String>>(value) != nullptr) {
    return value;
  }
  if (as<std::string>(value) == nullptr) {
    failConversion(value, "a text (String)");
  }
  return host.makeString(value.text());
}

Value convertArray(const Value& value, const DeclaredType& type) {
  if (value.isNil()) {
    return Ref<Array>();
  }
  const auto* const array = as<Ref<Array>>(value);
  if (array == nullptr || (*array)->elementType() != type.type) {
    failConversion(value, "an array (" + type.text() + ")");
  }
  return value;
}

Value convertSingle(Host& host, const Value& value, const TypeFacts& facts) {
  switch (facts.form) {
    case Form::kBoolean:
      return value.boolean();
    case Form::kSigned:
    case Form::kUnsigned:
      return convertNumber(value, facts);
    case Form::kReal:
      return convertReal(value, facts);
    case Form::kString:
      return convertText(host, value);
    case Form::kObject:
      return value.isNil() ? Value(Ref<Object>()) : Value(value.object());
    case Form::kPointer:
      return Value::pointer(value.pointer());
  }
  return {};
}

/// Quotes texts, so that they stand out in a message.
std::string shown(const Value& value) {
  struct Shower {
    std::string operator()(std::monostate) const { return "nothing"; }
    std::string operator()(std::nullptr_t) const { return "nil"; }
    std::string operator()(bool truth) const { return truth ? "True" : "False"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return numberText(number); }
    std::string operator()(const std::string& text) const { return "\"" + text + "\""; }
    std::string operator()(const Ref<String>& text) const { return text ? "\"" + text->bytes() + "\"" : "nil"; }
    std::string operator()(const Ref<Object>& object) const { return object ? object->describe() : "nil"; }
    std::string operator()(const Ref<Array>& array) const {
      if (!array) {
        return "nil";
      }
      std::string list = "[";
      for (const Value& element : array->elements()) {
        list += (list.size() > 1 ? ", " : "") + shown(element);
      }
      return list + "]";
    }
    std::string operator()(void* pointer) const { return hexadecimal(reinterpret_cast<std::uintptr_t>(pointer)); }
    std::string operator()(RawSlot slot) const { return "slot " + hexadecimal(slot.bits); }
    static std::string hexadecimal(std::uint64_t number) {
      char text[32];
      std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
      return text;
    }
  };
  return std::visit(Shower{}, value.storage());
}

bool isText(const Value& value) { return as<std::string>(value) != nullptr || as<Ref<String>>(value) != nullptr; }

bool isWhole(const Value& value) { return as<std::int64_t>(value) != nullptr || as<std::uint64_t>(value) != nullptr; }

bool sameWhole(const Value& a, const Value& b) {
  const auto* const x = as<std::int64_t>(a);
  const auto* const y = as<std::int64_t>(b);
  const bool a_negative = x != nullptr && *x < 0;
  const bool b_negative = y != nullptr && *y < 0;
  if (a_negative || b_negative) {
    return a_negative && b_negative && *x == *y;
  }
  return a.unsignedNumber() == b.unsignedNumber();
}

}  // namespace

bool Value::isNil() const {
  struct Asker {
    bool operator()(std::nullptr_t) const { return true; }
    bool operator()(const Ref<String>& r) const { return !r; }
    bool operator()(const Ref<Object>& r) const { return !r; }
    bool operator()(const Ref<Array>& r) const { return !r; }
    bool operator()(void* p) const { return p == nullptr; }
    bool operator()(std::monostate) const { return false; }
    bool operator()(bool) const { return false; }
    bool operator()(std::int64_t) const { return false; }
    bool operator()(std::uint64_t) const { return false; }
    bool operator()(double) const { return false; }
    bool operator()(const std::string&) const { return false; }
    bool operator()(RawSlot) const { return false; }
  };
  return std::visit(Asker{}, storage_);
}

bool Value::boolean() const {
  if (const auto* const truth = as<bool>(*this)) {
    return *truth;
  }
  failConversion(*this, "True or False");
}

std::int64_t Value::integer() const {
  if (const auto* const whole = as<std::int64_t>(*this)) {
    return *whole;
  }
  const auto* const natural = as<std::uint64_t>(*this);
  if (natural != nullptr && *natural <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return static_cast<std::int64_t>(*natural);
  }
  failConversion(*this, "a whole number");
}

std::uint64_t Value::unsignedNumber() const {
  if (const auto* const natural = as<std::uint64_t>(*this)) {
    return *natural;
  }
  const auto* const whole = as<std::int64_t>(*this);
  if (whole != nullptr && *whole >= 0) {
    return static_cast<std::uint64_t>(*whole);
  }
  failConversion(*this, "a whole number from 0");
}

double Value::real() const {
  if (const auto* const number = as<double>(*this)) {
    return *number;
  }
  if (const auto* const whole = as<std::int64_t>(*this)) {
    return static_cast<double>(*whole);
  }
  if (const auto* const natural = as<std::uint64_t>(*this)) {
    return static_cast<double>(*natural);
  }
  failConversion(*this, "a number");
}

std::string Value::text() const {
  if (const auto* const text = as<std::string>(*this)) {
    return *text;
  }
  if (const auto* const string = as<Ref<String>>(*this)) {
    return *string ? (*string)->bytes() : std::string();
  }
  if (std::holds_alternative<std::nullptr_t>(storage_)) {
    return {};
  }
  failConversion(*this, "a text");
}

Ref<String> Value::string() const {
  if (const auto* const string = as<Ref<String>>(*this)) {
    return *string;
  }
  failConversion(*this, "a string");
}

Ref<Object> Value::object() const {
  if (const auto* const object = as<Ref<Object>>(*this)) {
    return *object;
  }
  failConversion(*this, "an object");
}

Ref<Array> Value::array() const {
  if (const auto* const array = as<Ref<Array>>(*this)) {
    return *array;
  }
  failConversion(*this, "an array");
}

void* Value::pointer() const {
  if (const auto* const pointer = as<void*>(*this)) {
    return *pointer;
  }
  if (isNil()) {
    return nullptr;
  }
  failConversion(*this, "a pointer");
}

bool operator==(const Value& a, const Value& b) {
  if (a.isNil() || b.isNil()) {
    return a.isNil() && b.isNil();
  }
  if (isText(a) && isText(b)) {
    return a.text() == b.text();
  }
  if (isWhole(a) && isWhole(b)) {
    return sameWhole(a, b);
  }
  if ((isWhole(a) || as<double>(a) != nullptr) && (isWhole(b) || as<double>(b) != nullptr)) {
    return a.real() == b.real();
  }
  return a.storage_ == b.storage_;
}

std::ostream& operator<<(std::ostream& out, const Value& value) { return out << shown(value); }

Value convertToArgument(Host& host, const Value& value, const DeclaredType& type) {
  return type.is_array ? convertArray(value, type) : convertSingle(host, value, factsOf(type.type));
}

Value initialValue(Host& host, const DeclaredType& type) {
  if (type.is_array) {
    return Ref<Array>();
  }
  switch (factsOf(type.type).form) {
    case Form::kBoolean:
      return false;
    case Form::kSigned:
      return 0;
    case Form::kUnsigned:
      return 0U;
    case Form::kReal:
      return 0.0;
    case Form::kString:
      return host.makeString("");
    case Form::kObject:
      return Ref<Object>();
    case Form::kPointer:
      return Value::pointer(nullptr);
  }
  return {};
}

std::string numberText(double number) {
  if (std::isnan(number)) {
    return "nan";
  }
  if (std::isinf(number)) {
    return number < 0 ? "-inf" : "inf";
  }
  char text[40];
  for (int digits = std::numeric_limits<double>::digits10; digits <= std::numeric_limits<double>::max_digits10;
       ++digits) {
    std::snprintf(text, sizeof text, "%.*g", digits, number);
    if (std::strtod(text, nullptr) == number) {
      break;
    }
  }
  return text;
}

}  // namespace devhost
