// The page for the host programmer against the methods that the plugin registers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "docs/commands.h"
#include "docs/host_example.h"
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

/// As the tool prints them, from the table of the built plugin.
std::vector<Declaration> registeredMethods() {
  const Session session;
  int status = 0;
  std::vector<Declaration> methods;
  for (const std::string& line : splitLines(session.runTool({"methods"}, status))) {
    if (line.find('(') != std::string::npos) {
      methods.push_back(parseDeclaration(line));
    }
  }
  return methods;
}

Document readDocument(const std::string& name) {
  return parseMarkdown(name, readFile(std::string(PROJECT_FOLDER) + "/" + name));
}

class MethodsPage : public testing::Test {
 protected:
  /// The blocks under a method's heading.
  std::vector<Block> blocksOf(const std::string& method, const std::string& language) const {
    std::vector<Block> blocks;
    std::copy_if(page.blocks.begin(), page.blocks.end(), std::back_inserter(blocks),
                 [&](const Block& block) { return block.heading == method && block.language == language; });
    return blocks;
  }

  const std::vector<Declaration> methods = registeredMethods();
  const Document page = readDocument("docs/methods.md");
};

TEST_F(MethodsPage, HasEveryMethodUnderAHeadingWithItsDeclaration) {
  ASSERT_EQ(methods.size(), 15U);
  for (const Declaration& method : methods) {
    EXPECT_THAT(page.headings, Contains(method.name));
    const auto blocks = blocksOf(method.name, "");
    ASSERT_FALSE(blocks.empty()) << method.name;
    EXPECT_THAT(blocks.front().lines, ElementsAre(method.text));
  }
}

TEST_F(MethodsPage, HasAnExampleInTheHostsLanguageOfEveryMethod) {
  for (const Declaration& method : methods) {
    const auto blocks = blocksOf(method.name, "host");
    ASSERT_EQ(blocks.size(), 1U) << method.name;
    const HostExample example = checkHostExample(blocks.front().lines, methods);
    EXPECT_THAT(example.mistakes, IsEmpty()) << page.place(blocks.front().line);
    EXPECT_THAT(example.called, Contains(method.name));
  }
}

TEST_F(MethodsPage, HasACallOfEveryMethodWithTheTool) {
  for (const Declaration& method : methods) {
    std::vector<std::string> commands;
    for (const Block& block : blocksOf(method.name, "console")) {
      for (const Command& command : commandsOf(block)) {
        commands.push_back(command.text + " ");
      }
    }
    EXPECT_THAT(commands, Contains(HasSubstr("ostrevin-host call " + method.name + " ")));
  }
}

TEST_F(MethodsPage, TellsEveryMethodsCost) {
  const std::string text = readFile(PROJECT_FOLDER "/docs/methods.md");
  for (const Declaration& method : methods) {
    const std::size_t begin = text.find("\n### " + method.name + "\n");
    ASSERT_NE(begin, std::string::npos) << method.name;
    const std::string section = text.substr(begin, text.find("\n#", begin + 1) - begin);
    EXPECT_THAT(section, HasSubstr("\nCost: ")) << method.name;
  }
}

TEST(Readme, HasEveryMethodWithItsDeclaration) {
  const std::string text = readFile(PROJECT_FOLDER "/README.md");
  for (const Declaration& method : registeredMethods()) {
    EXPECT_THAT(text, HasSubstr("\n| `" + method.text + "` | "));
  }
}

TEST(HostExamples, ThatDoNotFitTheDeclarationAreNoticed) {
  const std::vector<Declaration> methods{parseDeclaration("GetName(displayID As UInt32, byref name As String)"),
                                         parseDeclaration("GetIndex(displayID As UInt32) As UInt32")};
  const auto mistakes = [&](const std::vector<std::string>& lines) {
    return checkHostExample(lines, methods).mistakes.size();
  };
  EXPECT_EQ(mistakes({"Dim name As String", "Ostrevin.GetName(displayID, name)"}), 0U);
  EXPECT_EQ(mistakes({"Ostrevin.GetName(displayID, name)"}), 1U);
  EXPECT_EQ(mistakes({"Dim name As Integer", "Ostrevin.GetName(displayID, name)"}), 1U);
  EXPECT_EQ(mistakes({"Dim name As String", "Ostrevin.GetName(name)"}), 1U);
  EXPECT_EQ(mistakes({"Dim name As String", "x = Ostrevin.GetName(1, name)"}), 1U);
  EXPECT_EQ(mistakes({"Ostrevin.GetNames(1)"}), 1U);
  EXPECT_EQ(mistakes({"Ostrevin.GetIndex(1)"}), 1U);
  EXPECT_EQ(mistakes({"Dim a, b As UInt32", "b = Ostrevin.GetIndex(a)"}), 0U);
  EXPECT_EQ(mistakes({"Dim a As Integer", "a = Ostrevin.GetIndex(1)"}), 1U);
  EXPECT_EQ(mistakes({"If Ostrevin.GetIndex(1) Then"}), 1U);
}

}  // namespace
}  // namespace docs_test
