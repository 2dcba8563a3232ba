#include "devhost/language/arguments.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include "devhost/language/printable.h"

namespace devhost {
namespace {

/// Sign, "0x" and digits, nothing else. The magnitude must fit 64 bits.
struct Whole {
  bool negative = false;
  std::uint64_t magnitude = 0;
};

std::optional<Whole> parseWhole(std::string_view text) {
  Whole whole;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    whole.negative = text.front() == '-';
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, whole.magnitude, base);
  if (text.empty() || error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return whole;
}

Value parseSigned(const std::string& text, const TypeFacts& facts) {
  const std::uint64_t highest =
      static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) >> (64 - facts.width * 8);
  const std::optional<Whole> whole = parseWhole(text);
  if (!whole || whole->magnitude > highest + (whole->negative ? 1 : 0)) {
    throw ValueError(std::string(facts.name) + " (-" + std::to_string(highest + 1) + " to " + std::to_string(highest) +
                     ")");
  }
  // In unsigned arithmetic, where the lowest number has a negation.
  return static_cast<std::int64_t>(whole->negative ? 0 - whole->magnitude : whole->magnitude);
}

Value parseUnsigned(const std::string& text, const TypeFacts& facts) {
  const std::uint64_t highest = std::numeric_limits<std::uint64_t>::max() >> (64 - facts.width * 8);
  const std::optional<Whole> whole = parseWhole(text);
  if (!whole || whole->magnitude > highest || (whole->negative && whole->magnitude != 0)) {
    throw ValueError(std::string(facts.name) + " (0 to " + std::to_string(highest) + ")");
  }
  return whole->magnitude;
}

Value parseReal(const std::string& text, const TypeFacts& facts) {
  char* end = nullptr;
  errno = 0;
  const double number = std::strtod(text.c_str(), &end);
  const bool whole_text = !text.empty() && end == text.c_str() + text.size();
  const bool leading_blank = !text.empty() && std::isspace(static_cast<unsigned char>(text.front())) != 0;
  const bool too_large = errno == ERANGE && std::abs(number) == HUGE_VAL;
  if (!whole_text || leading_blank || too_large) {
    throw ValueError(std::string("a number (") + facts.name + ")");
  }
  return number;
}

Value parseArgument(const std::string& text, const DeclaredType& type) {
  const TypeFacts& facts = factsOf(type.type);
  if (type.is_array) {
    throw ValueError("an array (" + type.text() + "), which cannot be written as a text");
  }
  switch (facts.form) {
    case Form::kBoolean:
      if (sameName(text, "true") || sameName(text, "false")) {
        return sameName(text, "true");
      }
      throw ValueError("True or False");
    case Form::kSigned:
      return parseSigned(text, facts);
    case Form::kUnsigned:
      return parseUnsigned(text, facts);
    case Form::kReal:
      return parseReal(text, facts);
    case Form::kString:
      return text;
    case Form::kObject:
      if (sameName(text, "nil")) {
        return nullptr;
      }
      throw ValueError("nil (no other object can be written as a text)");
    case Form::kPointer:
      break;
  }
  throw ValueError("a pointer (" + type.text() + "), which cannot be written as a text");
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
    try {
      values.push_back(parseArgument(text, parameter.type));
    } catch (const ValueError& expected) {
      throw ValueError(printable(declaration.name + ", argument " + parameter.name + ": expected " + expected.what() +
                                 ", got \"" + text + "\": " + declaration.text));
    }
  }
  return values;
}

}  // namespace devhost
