// The substitute host's parser of method declarations: a parsed declaration, printed and parsed again, is the same.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "devhost/language/declaration.h"
#include "devhost/language/printable.h"
#include "fuzz/support/fuzzing.h"

namespace {

using devhost::Declaration;
using devhost::DeclaredType;
using devhost::Parameter;
using fuzz::require;

std::string written(const Declaration& declaration) {
  std::string text = declaration.name + "(";
  for (const Parameter& parameter : declaration.parameters) {
    text += &parameter == declaration.parameters.data() ? "" : ", ";
    text += parameter.by_reference ? "ByRef " : "";
    text += parameter.name + " As " + parameter.type.text();
  }
  text += ")";
  return declaration.result ? text + " As " + declaration.result->text() : text;
}

bool same(const DeclaredType& a, const DeclaredType& b) {
  return a.type == b.type && a.name == b.name && a.is_array == b.is_array;
}

bool same(const Parameter& a, const Parameter& b) {
  return a.name == b.name && same(a.type, b.type) && a.by_reference == b.by_reference;
}

bool same(const Declaration& a, const Declaration& b) {
  return a.name == b.name && a.result.has_value() == b.result.has_value() &&
         (!a.result || same(*a.result, *b.result)) &&
         std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(), b.parameters.end(),
                    [](const Parameter& x, const Parameter& y) { return same(x, y); });
}

void checkRefusal(const std::string& message) {
  require(message.starts_with("declaration \"") && message.find(": expected ") != std::string::npos &&
              message.find(" at column ") != std::string::npos,
          "a refusal states what was expected and where");
  require(message == devhost::printable(message), "a refusal is one line that can be printed");
}

/// Nothing when the text is refused in the documented way.
std::optional<Declaration> parsed(const std::string& text) {
  try {
    return devhost::parseDeclaration(text);
  } catch (const devhost::DeclarationError& error) {
    checkRefusal(error.what());
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const std::optional<Declaration> declaration = parsed(text);
  if (!declaration) {
    return 0;
  }
  require(declaration->text == text, "a declaration keeps its text");
  require(declaration->valueParameterCount() <= declaration->parameters.size(), "some parameters are by value");
  const std::optional<Declaration> again = parsed(written(*declaration));
  require(again && same(*declaration, *again), "a declaration that is written out is the same declaration");
  require(declaration->signature() == again->signature(), "and has the same signature");
  return 0;
}
