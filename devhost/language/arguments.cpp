#include "devhost/language/arguments.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "devhost/language/printable.h"

namespace devhost {
namespace {

/// Sign, "0x" and digits, nothing else; as an unsigned number, or a signed one when it is negative.
std::optional<Value> parseWhole(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint64_t magnitude = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, magnitude, base);
  constexpr std::uint64_t kLowest = std::uint64_t{1} << 63;  // the magnitude of the lowest signed number
  if (text.empty() || error != std::errc() || stop != end || (negative && magnitude > kLowest)) {
    return std::nullopt;
  }
  // In unsigned arithmetic, where the lowest number has a negation.
  return negative ? Value(static_cast<std::int64_t>(0 - magnitude)) : Value(magnitude);
}

std::optional<Value> parseReal(const std::string& text) {
  char* end = nullptr;
  errno = 0;
  const double number = std::strtod(text.c_str(), &end);
  const bool whole_text = !text.empty() && end == text.c_str() + text.size();
  const bool leading_blank = !text.empty() && std::isspace(static_cast<unsigned char>(text.front())) != 0;
  const bool too_large = errno == ERANGE && std::abs(number) == HUGE_VAL;
  return !whole_text || leading_blank || too_large ? std::nullopt : std::optional<Value>(number);
}

std::optional<Value> parseArgument(const std::string& text, const DeclaredType& type) {
  if (type.is_array) {
    return std::nullopt;
  }
  switch (factsOf(type.type).form) {
    case Form::kBoolean:
      return sameName(text, "true") || sameName(text, "false") ? std::optional<Value>(sameName(text, "true"))
                                                               : std::nullopt;
    case Form::kSigned:
    case Form::kUnsigned:
      return parseWhole(text);
    case Form::kReal:
      return parseReal(text);
    case Form::kString:
      return text;
    case Form::kObject:
      return sameName(text, "nil") ? std::optional<Value>(nullptr) : std::nullopt;
    case Form::kPointer:
      break;
  }
  return std::nullopt;
}

/// The texts that a type admits, in words.
std::string admittedTexts(const DeclaredType& type) {
  const Form form = factsOf(type.type).form;
  if (type.is_array || form == Form::kPointer) {
    return admittedValues(type) + ", which cannot be written as a text";
  }
  return form == Form::kObject ? "nil (no other object can be written as a text)" : admittedValues(type);
}

std::string countsText(const Declaration& declaration) {
  const std::size_t all = declaration.parameters.size();
  const std::size_t values = declaration.valueParameterCount();
  const std::string text = std::to_string(values) + (values == 1 ? " argument" : " arguments");
  return values == all ? text : text + " (" + std::to_string(all) + " with those by reference)";
}

}  // namespace

void checkArgumentCount(const Declaration& declaration, std::size_t count) {
  if (count != declaration.parameters.size() && count != declaration.valueParameterCount()) {
    throw ValueError(printable(declaration.name + ": expected " + countsText(declaration) + ", got " +
                               std::to_string(count) + ": " + declaration.text));
  }
}

Values parseArguments(const Declaration& declaration, const std::vector<std::string>& texts) {
  checkArgumentCount(declaration, texts.size());
  const bool all_given = texts.size() == declaration.parameters.size();
  Values values;
  for (const Parameter& parameter : declaration.parameters) {
    if (parameter.by_reference && !all_given) {
      continue;
    }
    const std::string& text = texts[values.size()];
    const std::optional<Value> value = parseArgument(text, parameter.type);
    const std::optional<Value> converted = value ? tryConvert(*value, parameter.type) : std::nullopt;
    if (!converted) {
      throw ValueError(printable(declaration.name + ", argument " + parameter.name + ": expected " +
                                 admittedTexts(parameter.type) + ", got \"" + text + "\": " + declaration.text));
    }
    values.push_back(*converted);
  }
  return values;
}

}  // namespace devhost
