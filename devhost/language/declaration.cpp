#include "devhost/language/declaration.h"

#include <algorithm>
#include <cstddef>

#include "devhost/language/printable.h"

namespace devhost {
namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
/// Letters beyond ASCII are allowed in names, so every byte of a multi-byte sequence is.
bool startsName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool isKeyword(std::string_view word) {
  return sameName(word, "as") || sameName(word, "byref") || sameName(word, "byval");
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Declaration parse() {
    Declaration declaration;
    declaration.text = text_;
    declaration.name = name("the method's name");
    expect('(', "\"(\" after the method's name");
    if (!accept(')')) {
      do {
        declaration.parameters.push_back(parameter());
      } while (accept(','));
      expect(')', "\",\" or \")\" after a parameter");
    }
    if (!atEnd()) {
      keyword("as", "\"As\" and the result's type, or the end");
      declaration.result = type();
    }
    if (!atEnd()) {
      fail("the end");
    }
    return declaration;
  }

 private:
  Parameter parameter() {
    Parameter parameter;
    std::string word = name("a parameter's name", true);
    if (sameName(word, "byref") || sameName(word, "byval")) {
      parameter.by_reference = sameName(word, "byref");
      word = name("a parameter's name");
    }
    parameter.name = word;
    const bool is_array = acceptArrayMark();
    keyword("as", "\"As\" after the parameter's name");
    parameter.type = type();
    parameter.type.is_array = parameter.type.is_array || is_array;
    return parameter;
  }

  DeclaredType type() {
    DeclaredType type;
    type.name = name("a type's name");
    while (accept('.')) {
      type.name += "." + name("a name after \".\"");
    }
    type.type = findType(type.name).value_or(Type::kObject);
    type.is_array = acceptArrayMark();
    return type;
  }

  bool acceptArrayMark() {
    if (!accept('(')) {
      return false;
    }
    expect(')', "\")\" to close an array's \"(\"");
    return true;
  }

  /// A keyword is not a name, except where `allow_passing` lets "ByRef" and "ByVal" through.
  std::string name(const char* expected, bool allow_passing = false) {
    skipBlanks();
    const std::size_t start = at_;
    std::string word = readWord();
    const bool passing = sameName(word, "byref") || sameName(word, "byval");
    if (word.empty() || (isKeyword(word) && !(allow_passing && passing))) {
      at_ = start;
      fail(expected);
    }
    return word;
  }

  void keyword(const char* wanted, const char* expected) {
    skipBlanks();
    const std::size_t start = at_;
    if (!sameName(readWord(), wanted)) {
      at_ = start;
      fail(expected);
    }
  }

  std::string readWord() {
    const std::size_t start = at_;
    if (at_ < text_.size() && startsName(text_[at_])) {
      while (at_ < text_.size() && (startsName(text_[at_]) || isDigit(text_[at_]))) {
        ++at_;
      }
    }
    return std::string(text_.substr(start, at_ - start));
  }

  bool accept(char sign) {
    skipBlanks();
    if (at_ >= text_.size() || text_[at_] != sign) {
      return false;
    }
    ++at_;
    return true;
  }

  void expect(char sign, const char* expected) {
    if (!accept(sign)) {
      fail(expected);
    }
  }

  bool atEnd() {
    skipBlanks();
    return at_ >= text_.size();
  }

  void skipBlanks() {
    while (at_ < text_.size() && isBlank(text_[at_])) {
      ++at_;
    }
  }

  [[noreturn]] void fail(const char* expected) const {
    const std::string found = at_ >= text_.size() ? "it ends" : "\"" + std::string(text_.substr(at_, 1)) + "\" stands";
    throw DeclarationError(printable("declaration \"" + std::string(text_) + "\": expected " + expected +
                                     " at column " + std::to_string(at_ + 1) + ", where " + found));
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::string DeclaredType::text() const { return is_array ? name + "()" : name; }

std::size_t Declaration::valueParameterCount() const {
  return static_cast<std::size_t>(
      std::count_if(parameters.begin(), parameters.end(), [](const Parameter& p) { return !p.by_reference; }));
}

std::string Declaration::signature() const {
  std::string signature = lowerCase(name) + "(";
  for (const Parameter& parameter : parameters) {
    signature += (parameter.by_reference ? "byref " : "") + lowerCase(parameter.type.text()) + ",";
  }
  signature += ")";
  return result ? signature + lowerCase(result->text()) : signature;
}

Declaration parseDeclaration(std::string_view text) { return Parser(text).parse(); }

}  // namespace devhost
