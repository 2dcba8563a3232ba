// The substitute host's parser of arguments as text. The input is a declaration and its arguments, each ended by a NUL;
// declaration_fuzzer covers invalid declarations.
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "devhost/language/arguments.h"
#include "devhost/language/printable.h"
#include "fuzz/support/fuzzing.h"

namespace {

using devhost::Declaration;
using devhost::DeclaredType;
using devhost::Form;
using devhost::TypeFacts;
using devhost::Value;
using devhost::Values;
using fuzz::require;

std::vector<std::string> partsOf(std::string text) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end = text.find('\0'); end != std::string::npos; end = text.find('\0', begin)) {
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  if (begin < text.size()) {
    parts.push_back(text.substr(begin));
  }
  return parts;
}

/// Whether the number has a place in that many bytes.
bool fits(std::int64_t number, std::size_t width) {
  const std::int64_t highest = std::numeric_limits<std::int64_t>::max() >> (64 - 8 * width);
  return -highest - 1 <= number && number <= highest;
}

bool fits(std::uint64_t number, std::size_t width) {
  return number <= std::numeric_limits<std::uint64_t>::max() >> (64 - 8 * width);
}

std::string shown(const Value& value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

Value parsedAgain(const DeclaredType& type, const std::string& text) {
  return devhost::parseArguments(devhost::parseDeclaration("f(a As " + type.text() + ")"), {text}).front();
}

void checkValue(const Value& value, const DeclaredType& type, const std::string& text) {
  require(!type.is_array, "no array can be written as a text");
  const TypeFacts& facts = devhost::factsOf(type.type);
  switch (facts.form) {
    case Form::kBoolean:
      require(parsedAgain(type, shown(value)) == value, "a truth value reads back");
      return;
    case Form::kSigned:
      require(fits(value.integer(), facts.width), "a signed number fits its type");
      require(parsedAgain(type, shown(value)) == value, "a signed number reads back");
      return;
    case Form::kUnsigned:
      require(fits(value.unsignedNumber(), facts.width), "an unsigned number fits its type");
      require(parsedAgain(type, shown(value)) == value, "an unsigned number reads back");
      return;
    case Form::kReal: {
      const double again = parsedAgain(type, devhost::numberText(value.real())).real();
      require(again == value.real() || (std::isnan(again) && std::isnan(value.real())), "a number reads back");
      return;
    }
    case Form::kString:
      require(value.text() == text, "a text is taken as it is");
      return;
    case Form::kObject:
      require(value.isNil(), "no object but nil");
      return;
    case Form::kPointer:
      require(false, "no pointer can be written as a text");
  }
}

void checkValues(const Declaration& declaration, const std::vector<std::string>& texts, const Values& values) {
  require(values.size() == texts.size(), "there is a value for each text");
  const bool all = values.size() == declaration.parameters.size();
  std::size_t next = 0;
  for (const devhost::Parameter& parameter : declaration.parameters) {
    if (all || !parameter.by_reference) {
      checkValue(values[next], parameter.type, texts[next]);
      ++next;
    }
  }
}

void checkRefusal(const Declaration& declaration, const std::string& message) {
  require(message.find("expected ") != std::string::npos, "a refusal states what was expected");
  require(message == devhost::printable(message), "a refusal is one line that can be printed");
  require(message.starts_with(devhost::printable(declaration.name)), "a refusal begins with the method's name");
  require(message.ends_with(devhost::printable(declaration.text)), "a refusal ends with the declaration");
}

/// Nothing when the declaration is refused.
std::optional<Declaration> parsedDeclaration(const std::string& text) {
  try {
    return devhost::parseDeclaration(text);
  } catch (const devhost::DeclarationError&) {
    return std::nullopt;
  }
}

/// Nothing when the arguments are refused in the documented way.
std::optional<Values> parsedArguments(const Declaration& declaration, const std::vector<std::string>& texts) {
  try {
    return devhost::parseArguments(declaration, texts);
  } catch (const devhost::ValueError& error) {
    checkRefusal(declaration, error.what());
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> texts = partsOf(std::string(data, data + size));
  const auto declaration = texts.empty() ? std::nullopt : parsedDeclaration(texts.front());
  if (!declaration) {
    return 0;
  }
  texts.erase(texts.begin());
  if (const auto values = parsedArguments(*declaration, texts)) {
    checkValues(*declaration, texts, *values);
  }
  return 0;
}
