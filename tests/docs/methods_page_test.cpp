// The page for the host programmer, and the examples in the host's language, against the methods that the plugin
// registers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <regex>

#include "devhost/language/declaration.h"
#include "docs/markdown.h"
#include "docs/session.h"

namespace docs_test {
namespace {

using devhost::Declaration;
using devhost::parseDeclaration;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

/// The arguments between the parenthesis at the beginning of the text and its match.
std::vector<std::string> argumentsIn(const std::string& text) {
  std::vector<std::string> arguments;
  std::string argument;
  int depth = 0;
  for (const char character : text) {
    depth += character == '(' ? 1 : character == ')' ? -1 : 0;
    const bool ends = depth == 0 || (depth == 1 && character == ',');
    if (ends && !argument.empty()) {
      arguments.push_back(argument);
    }
    if (depth == 0) {
      break;
    }
    if (ends || (depth == 1 && character == '(')) {
      argument.clear();
    } else if (character != ' ') {
      argument += character;
    }
  }
  return arguments;
}

/// One line for each call in an example that does not fit the method's declaration: its name, the number of arguments,
/// by-reference arguments that are not variables of the parameter's type, the use of the result.
std::vector<std::string> mistakesIn(const std::vector<std::string>& lines, const std::vector<Declaration>& methods) {
  static const std::regex kDim(R"(Dim (.+) As (\w+))");
  static const std::regex kName(R"(\w+)");
  static const std::regex kCall(R"(^(.*)\bOstrevin\.(\w+)(\(.*)$)");
  std::map<std::string, std::string> types;
  std::vector<std::string> mistakes;
  for (const std::string& line : lines) {
    std::smatch match;
    if (std::regex_search(line, match, kDim)) {
      const std::string names = match[1];
      for (std::sregex_iterator name(names.begin(), names.end(), kName), end; name != end; ++name) {
        types[lower(name->str())] = lower(match[2]);
      }
    } else if (std::regex_match(line, match, kCall)) {
      const auto method = std::find_if(methods.begin(), methods.end(),
                                       [&](const Declaration& declaration) { return declaration.name == match[2]; });
      const std::vector<std::string> arguments = argumentsIn(match[3]);
      bool fits = method != methods.end() && arguments.size() == method->parameters.size() &&
                  method->result.has_value() == (match[1].str().find_first_not_of(' ') != std::string::npos);
      for (std::size_t i = 0; fits && i < arguments.size(); ++i) {
        fits = !method->parameters[i].by_reference ||
               types[lower(arguments[i])] == lower(method->parameters[i].type.text());
      }
      if (!fits) {
        mistakes.push_back(line);
      }
    }
  }
  return mistakes;
}

/// From the table of the built plugin, as the tool prints it.
std::vector<Declaration> registeredMethods() {
  Session session;
  std::vector<Declaration> methods;
  const Outcome outcome = session.run({"ostrevin-host methods"}).at(0);
  for (const std::string& line : outcome.printed) {
    if (line.find('(') != std::string::npos) {
      methods.push_back(parseDeclaration(line));
    }
  }
  return methods;
}

TEST(MethodsPage, HasDeclarationExampleCallAndCostOfEveryMethod) {
  const std::vector<Declaration> methods = registeredMethods();
  ASSERT_EQ(methods.size(), 15U);
  const std::string text = readFile(PROJECT_FOLDER "/docs/methods.md");
  const Document page = parseMarkdown("docs/methods.md", text);
  for (const Declaration& method : methods) {
    const auto linesOf = [&](const std::string& language) {
      const auto block = std::find_if(page.blocks.begin(), page.blocks.end(), [&](const Block& candidate) {
        return candidate.heading == method.name && candidate.language == language;
      });
      return block == page.blocks.end() ? std::vector<std::string>() : block->lines;
    };
    EXPECT_THAT(linesOf(""), ElementsAre(method.text));
    EXPECT_THAT(linesOf("host"), Contains(HasSubstr("Ostrevin." + method.name + "("))) << method.name;
    EXPECT_THAT(joinLines(linesOf("console")),
                ::testing::ContainsRegex("\\$ ostrevin-host call " + method.name + "[ \n]"));
    const std::size_t begin = text.find("\n### " + method.name + "\n");
    EXPECT_THAT(text.substr(begin, text.find("\n#", begin + 1) - begin), HasSubstr("\nCost: ")) << method.name;
  }
}

TEST(HostExamples, CallMethodsAsDeclared) {
  const std::vector<Declaration> methods = registeredMethods();
  for (const Document& document : readDocuments(PROJECT_FOLDER)) {
    for (const Block& block : document.blocks) {
      if (block.language == "host") {
        EXPECT_THAT(mistakesIn(block.lines, methods), IsEmpty()) << document.place(block.line);
      }
    }
  }
}

TEST(HostExamples, ThatDoNotFitTheDeclarationAreReported) {
  const std::vector<Declaration> methods{parseDeclaration("GetName(displayID As UInt32, byref name As String)"),
                                         parseDeclaration("GetIndex(displayID As UInt32) As UInt32")};
  const auto mistakes = [&](const std::vector<std::string>& lines) { return mistakesIn(lines, methods).size(); };
  EXPECT_EQ(mistakes({"Dim name As String", "Ostrevin.GetName(displays(1, 2), name)"}), 0U);
  EXPECT_EQ(mistakes({"Ostrevin.GetName(displayID, name)"}), 1U);
  EXPECT_EQ(mistakes({"Dim name As Integer", "Ostrevin.GetName(displayID, name)"}), 1U);
  EXPECT_EQ(mistakes({"Dim name As String", "Ostrevin.GetName(name)"}), 1U);
  EXPECT_EQ(mistakes({"Dim name As String", "x = Ostrevin.GetName(1, name)"}), 1U);
  EXPECT_EQ(mistakes({"Ostrevin.GetNames(1)"}), 1U);
  EXPECT_EQ(mistakes({"Ostrevin.GetIndex(1)"}), 1U);
  EXPECT_EQ(mistakes({"b = Ostrevin.GetIndex(1)"}), 0U);
}

}  // namespace
}  // namespace docs_test
