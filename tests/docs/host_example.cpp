#include "docs/host_example.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <regex>

namespace docs_test {
namespace {

using devhost::Declaration;
using devhost::Parameter;

/// Types by variable, both in lower case, arrays with "()".
using Variables = std::map<std::string, std::string>;

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

std::string trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// The parts between commas that are in no parentheses.
std::vector<std::string> splitArguments(const std::string& text) {
  std::vector<std::string> parts;
  int depth = 0;
  std::string part;
  for (const char character : text) {
    depth += character == '(' ? 1 : character == ')' ? -1 : 0;
    if (character == ',' && depth == 0) {
      parts.push_back(trimmed(part));
      part.clear();
    } else {
      part += character;
    }
  }
  if (!trimmed(part).empty() || !parts.empty()) {
    parts.push_back(trimmed(part));
  }
  return parts;
}

/// What stands between the parenthesis at `open` and the one that closes it.
std::optional<std::string> inParentheses(const std::string& line, std::size_t open) {
  int depth = 0;
  for (std::size_t i = open; i < line.size(); ++i) {
    depth += line[i] == '(' ? 1 : line[i] == ')' ? -1 : 0;
    if (depth == 0) {
      return line.substr(open + 1, i - open - 1);
    }
  }
  return std::nullopt;
}

void declare(const std::string& line, Variables& variables) {
  static const std::regex kDim(R"(^\s*Dim (.+) As (\w+)\s*(?:=.*|'.*)?$)", std::regex::icase);
  std::smatch match;
  if (!std::regex_match(line, match, kDim)) {
    return;
  }
  for (std::string name : splitArguments(match[1])) {
    const bool is_array = name.ends_with("()");
    name = is_array ? name.substr(0, name.size() - 2) : name;
    variables[lower(name)] = lower(match[2]) + (is_array ? "()" : "");
  }
}

class Checker {
 public:
  Checker(const std::vector<Declaration>& methods, HostExample& example) : methods_(methods), example_(example) {}

  void take(const std::string& line) {
    declare(line, variables_);
    static const std::regex kCall(R"(Ostrevin\.(\w+)(\(?))");
    for (std::sregex_iterator call(line.begin(), line.end(), kCall); call != std::sregex_iterator(); ++call) {
      line_ = line;
      checkCall((*call)[1], line.substr(0, static_cast<std::size_t>(call->position(0))),
                static_cast<std::size_t>(call->position(2)));
    }
  }

 private:
  void complain(const std::string& what) { example_.mistakes.push_back(trimmed(line_) + ": " + what); }

  void checkCall(const std::string& name, const std::string& before, std::size_t open) {
    const auto method = std::find_if(methods_.begin(), methods_.end(),
                                     [&](const Declaration& declaration) { return declaration.name == name; });
    if (method == methods_.end()) {
      complain("no method is called so");
      return;
    }
    example_.called.push_back(name);
    const auto inner = open < line_.size() && line_[open] == '(' ? inParentheses(line_, open) : std::nullopt;
    const std::vector<std::string> arguments = inner ? splitArguments(*inner) : std::vector<std::string>();
    if (!inner || arguments.size() != method->parameters.size()) {
      complain("not the arguments of " + method->text);
      return;
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      checkArgument(arguments[i], method->parameters[i]);
    }
    checkUse(trimmed(before), *method);
  }

  void checkArgument(const std::string& argument, const Parameter& parameter) {
    const auto variable = variables_.find(lower(argument));
    const std::string type = lower(parameter.type.text());
    if (variable == variables_.end()) {
      if (parameter.by_reference) {
        complain(argument + " is not declared");
      }
    } else if (variable->second != type && type != "object") {
      complain(argument + " is no " + parameter.type.text());
    }
  }

  void checkUse(const std::string& before, const Declaration& method) {
    if (!method.result) {
      if (!before.empty()) {
        complain("has no result");
      }
      return;
    }
    static const std::regex kAssignment(R"(^(\w+) =$)");
    std::smatch match;
    if (before.empty()) {
      complain("the result is not used");
    } else if (std::regex_match(before, match, kAssignment)) {
      const auto variable = variables_.find(lower(match[1]));
      if (variable != variables_.end() && variable->second != lower(method.result->text())) {
        complain(match[1].str() + " is no " + method.result->text());
      }
    } else if (std::regex_match(before, std::regex("If( Not)?")) && lower(method.result->text()) != "boolean") {
      complain("is no Boolean");
    }
  }

  const std::vector<Declaration>& methods_;
  HostExample& example_;
  Variables variables_;
  std::string line_;
};

}  // namespace

HostExample checkHostExample(const std::vector<std::string>& lines, const std::vector<Declaration>& methods) {
  HostExample example;
  Checker checker(methods, example);
  for (const std::string& line : lines) {
    checker.take(line);
  }
  return example;
}

}  // namespace docs_test
