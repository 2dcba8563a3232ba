#include "devhost/language/value.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <utility>

namespace devhost {
namespace {

template <typename T>
const T* as(const Value& value) {
  return std::get_if<T>(&value.storage());
}

bool isWhole(const Value& value) { return as<std::int64_t>(value) != nullptr || as<std::uint64_t>(value) != nullptr; }

bool isNumber(const Value& value) { return isWhole(value) || as<double>(value) != nullptr; }

/// Nothing for other values than whole numbers from `lowest` to `highest`.
template <typename Number>
std::optional<Number> wholeBetween(Number lowest, Number highest, const Value& value) {
  const auto within = [&](auto number) -> std::optional<Number> {
    if (std::cmp_less(number, lowest) || std::cmp_greater(number, highest)) {
      return std::nullopt;
    }
    return static_cast<Number>(number);
  };
  const auto* const whole = as<std::int64_t>(value);
  const auto* const natural = as<std::uint64_t>(value);
  return whole != nullptr ? within(*whole) : natural != nullptr ? within(*natural) : std::nullopt;
}

template <typename Number>
std::optional<Number> wholeOf(const Value& value) {
  return wholeBetween(std::numeric_limits<Number>::lowest(), std::numeric_limits<Number>::max(), value);
}

std::int64_t highestSigned(const TypeFacts& facts) {
  return std::numeric_limits<std::int64_t>::max() >> (64 - facts.width * 8);
}

std::uint64_t highestUnsigned(const TypeFacts& facts) {
  return std::numeric_limits<std::uint64_t>::max() >> (64 - facts.width * 8);
}

std::string hexadecimal(std::uint64_t number) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
  return text;
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
    std::string operator()(const Values& elements) const {
      std::string list = "[";
      for (const Value& element : elements) {
        list += (list.size() > 1 ? ", " : "") + shown(element);
      }
      return list + "]";
    }
    std::string operator()(const std::shared_ptr<Object>&) const { return "an object"; }
    std::string operator()(void* pointer) const { return hexadecimal(reinterpret_cast<std::uintptr_t>(pointer)); }
    std::string operator()(RawSlot slot) const { return "slot " + hexadecimal(slot.bits); }
  };
  return std::visit(Shower{}, value.storage());
}

[[noreturn]] void failConversion(const Value& value, const std::string& expected) {
  throw ValueError("expected " + expected + ", got " + shown(value));
}

/// The value as a `T`. Throws ValueError for a value of another kind.
template <typename T>
const T& expect(const Value& value, const char* expected) {
  const T* const found = as<T>(value);
  if (found == nullptr) {
    failConversion(value, expected);
  }
  return *found;
}

std::optional<Value> convertArray(const Value& value, const DeclaredType& type) {
  if (value.isNil()) {
    return Value(nullptr);
  }
  const auto* const elements = as<Values>(value);
  if (elements == nullptr) {
    return std::nullopt;
  }
  const DeclaredType element_type{type.type, type.name, false};
  Values converted;
  for (const Value& element : *elements) {
    const std::optional<Value> one = tryConvert(element, element_type);
    if (!one) {
      return std::nullopt;
    }
    converted.push_back(*one);
  }
  return Value::array(std::move(converted));
}

std::optional<Value> convertReal(const Value& value, const TypeFacts& facts) {
  if (!isNumber(value)) {
    return std::nullopt;
  }
  return Value(facts.type == Type::kSingle ? static_cast<double>(static_cast<float>(value.real())) : value.real());
}

}  // namespace

Value::Value(std::shared_ptr<Object> object) : storage_(nullptr) {
  if (object) {
    storage_ = std::move(object);
  }
}

Value Value::pointer(void* value) {
  Value result;
  result.storage_ = value;
  return result;
}

Value Value::array(Values elements) {
  Value result;
  result.storage_ = std::move(elements);
  return result;
}

bool Value::isNil() const {
  const auto* const pointer = as<void*>(*this);
  return std::holds_alternative<std::nullptr_t>(storage_) || (pointer != nullptr && *pointer == nullptr);
}

bool Value::boolean() const { return expect<bool>(*this, "True or False"); }

std::int64_t Value::integer() const {
  const std::optional<std::int64_t> whole = wholeOf<std::int64_t>(*this);
  return whole ? *whole : expect<std::int64_t>(*this, "a whole number");
}

std::uint64_t Value::unsignedNumber() const {
  const std::optional<std::uint64_t> natural = wholeOf<std::uint64_t>(*this);
  return natural ? *natural : expect<std::uint64_t>(*this, "a whole number from 0");
}

double Value::real() const {
  if (const auto* const whole = as<std::int64_t>(*this)) {
    return static_cast<double>(*whole);
  }
  if (const auto* const natural = as<std::uint64_t>(*this)) {
    return static_cast<double>(*natural);
  }
  return expect<double>(*this, "a number");
}

std::string Value::text() const {
  return std::holds_alternative<std::nullptr_t>(storage_) ? std::string() : expect<std::string>(*this, "a text");
}

std::shared_ptr<Object> Value::object() const {
  return isNil() ? nullptr : expect<std::shared_ptr<Object>>(*this, "an object");
}

const Values& Value::elements() const { return expect<Values>(*this, "an array"); }

std::vector<std::string> Value::texts() const {
  std::vector<std::string> texts;
  for (const Value& element : elements()) {
    texts.push_back(element.text());
  }
  return texts;
}

void* Value::pointer() const { return isNil() ? nullptr : expect<void*>(*this, "a pointer"); }

bool operator==(const Value& a, const Value& b) {
  if (a.isNil() || b.isNil()) {
    return a.isNil() && b.isNil();
  }
  if (isWhole(a) && isWhole(b)) {
    const std::optional<std::int64_t> x = wholeOf<std::int64_t>(a);
    const std::optional<std::int64_t> y = wholeOf<std::int64_t>(b);
    return x || y ? x == y : a.unsignedNumber() == b.unsignedNumber();
  }
  if (isNumber(a) && isNumber(b)) {
    return a.real() == b.real();
  }
  return a.storage_ == b.storage_;
}

std::ostream& operator<<(std::ostream& out, const Value& value) { return out << shown(value); }

std::optional<Value> tryConvert(const Value& value, const DeclaredType& type) {
  const TypeFacts& facts = factsOf(type.type);
  const auto keepIf = [&](bool admitted) { return admitted ? std::optional<Value>(value) : std::nullopt; };
  if (type.is_array) {
    return convertArray(value, type);
  }
  switch (facts.form) {
    case Form::kBoolean:
      return keepIf(as<bool>(value) != nullptr);
    case Form::kSigned:
      return wholeBetween(-highestSigned(facts) - 1, highestSigned(facts), value);
    case Form::kUnsigned:
      return wholeBetween(std::uint64_t{0}, highestUnsigned(facts), value);
    case Form::kReal:
      return convertReal(value, facts);
    case Form::kString:
      return value.isNil() ? Value(nullptr) : keepIf(as<std::string>(value) != nullptr);
    case Form::kObject:
      return value.isNil() ? Value(nullptr) : keepIf(as<std::shared_ptr<Object>>(value) != nullptr);
    case Form::kPointer:
      return value.isNil() ? Value::pointer(nullptr) : keepIf(as<void*>(value) != nullptr);
  }
  return std::nullopt;
}

Value convert(const Value& value, const DeclaredType& type) {
  const std::optional<Value> converted = tryConvert(value, type);
  if (!converted) {
    failConversion(value, admittedValues(type));
  }
  return *converted;
}

std::string admittedValues(const DeclaredType& type) {
  const TypeFacts& facts = factsOf(type.type);
  const auto range = [&](auto lowest, auto highest) {
    return std::string(facts.name) + " (" + std::to_string(lowest) + " to " + std::to_string(highest) + ")";
  };
  if (type.is_array) {
    return "an array (" + type.text() + ")";
  }
  switch (facts.form) {
    case Form::kBoolean:
      return "True or False";
    case Form::kSigned:
      return range(-highestSigned(facts) - 1, highestSigned(facts));
    case Form::kUnsigned:
      return range(0, highestUnsigned(facts));
    case Form::kReal:
      return std::string("a number (") + facts.name + ")";
    case Form::kString:
      return std::string("a text (") + facts.name + ")";
    case Form::kObject:
      return "an object";
    case Form::kPointer:
      break;
  }
  return "a pointer (" + type.text() + ")";
}

Value initialValue(const DeclaredType& type) {
  if (type.is_array) {
    return nullptr;
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
      return "";
    case Form::kObject:
      return nullptr;
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
