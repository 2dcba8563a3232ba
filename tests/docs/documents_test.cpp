// The documents against the project: commands and outputs, links, paths, JSON, the picture.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

#include "docs/markdown.h"
#include "docs/names.h"
#include "docs/session.h"

namespace docs_test {
namespace {

using ::testing::AnyOfArray;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<Document>& documents() {
  static const std::vector<Document> read = readDocuments(PROJECT_FOLDER);
  return read;
}

/// Runs the commands of a block; returns how many.
std::size_t checkBlock(Session& session, const Document& document, const Block& block) {
  const std::vector<Command> commands = commandsOf(block);
  std::vector<std::string> texts(commands.size());
  std::transform(commands.begin(), commands.end(), texts.begin(), [](const Command& command) { return command.text; });
  const std::vector<Outcome> outcomes = session.run(texts);
  for (std::size_t i = 0; i < commands.size(); ++i) {
    const std::string what =
        document.place(commands[i].line) + ": " + texts[i] + "\nprints\n" + joinLines(outcomes[i].printed);
    const bool status_is_shown = i + 1 < commands.size() && texts[i + 1] == "echo $?";
    EXPECT_TRUE(outcomes[i].status == 0 || status_is_shown) << what << "with status " << outcomes[i].status;
    EXPECT_TRUE(showsOutput(commands[i].output, outcomes[i].printed)) << what << "but the document shows\n"
                                                                      << joinLines(commands[i].output);
  }
  return commands.size();
}

TEST(Documents, ShowWhatTheirCommandsPrint) {
  std::size_t count = 0;
  for (const Document& document : documents()) {
    Session session;
    for (const Block& block : document.blocks) {
      EXPECT_THAT(block.language, AnyOfArray({"", "console", "cmake", "cpp", "host", "json", "sh", "text"}))
          << document.place(block.line);
      count += checkBlock(session, document, block);
    }
  }
  std::printf("%zu commands of %zu documents\n", count, documents().size());
  EXPECT_GT(count, 30U);
}

TEST(Documents, NameCommandsThatExist) {
  static const std::regex kCommand(
      R"(([A-Z_]+=\S* +)*(\./[a-z]|\.ci/|bench/run|fuzz/run|scripts/|build/[a-z]+/bin/|cmake -|ctest|ostrevin-host ).*)");
  Names names;
  for (const Document& document : documents()) {
    std::vector<Located> commands;
    std::copy_if(document.code.begin(), document.code.end(), std::back_inserter(commands),
                 [](const Located& code) { return std::regex_match(code.text, kCommand); });
    for (const Block& block : document.blocks) {
      for (std::size_t i = 0; (block.language == "sh" || block.language == "console") && i < block.lines.size(); ++i) {
        if (block.language == "sh" || block.lines[i].starts_with("$ ")) {
          commands.push_back({block.lines[i].substr(block.language == "sh" ? 0 : 2), block.line + i});
        }
      }
    }
    for (const Located& command : commands) {
      EXPECT_THAT(names.missingIn(command.text), IsEmpty()) << document.place(command.line) << ": " << command.text;
    }
  }
}

TEST(Documents, NamePathsThatExist) {
  const Names names;
  for (const Document& document : documents()) {
    for (const Located& line : document.prose) {
      EXPECT_THAT(names.missingPathsIn(line.text), IsEmpty()) << document.place(line.line);
    }
  }
  for (const auto& entry : std::filesystem::directory_iterator(PROJECT_FOLDER "/docs")) {
    if (entry.path().extension() == ".svg") {  // without the markup, where "/" ends an element
      const std::string text = std::regex_replace(readFile(entry.path()), std::regex("<[^>]*>"), "\n");
      EXPECT_THAT(names.missingPathsIn(text), IsEmpty()) << entry.path();
    }
  }
}

TEST(Documents, LinkToFilesAndHeadingsThatExist) {
  for (const Document& document : documents()) {
    for (const Located& link : document.links) {
      if (link.text.find("://") != std::string::npos) {
        continue;
      }
      const std::string place = document.place(link.line) + ": " + link.text;
      const std::size_t hash = std::min(link.text.find('#'), link.text.size());
      const auto folder = std::filesystem::path(document.name).parent_path();
      const std::string target =
          hash == 0 ? document.name : (folder / link.text.substr(0, hash)).lexically_normal().string();
      EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(PROJECT_FOLDER) / target)) << place;
      if (hash < link.text.size()) {
        const Document linked = parseMarkdown(target, readFile(std::string(PROJECT_FOLDER "/") + target));
        EXPECT_TRUE(std::any_of(linked.headings.begin(), linked.headings.end(), [&](const std::string& heading) {
          return fragmentOf(heading) == link.text.substr(hash + 1);
        })) << place;
      }
    }
  }
}

TEST(Documents, HoldJsonThatIsADesktopFile) {
  Session session;
  for (const Document& document : documents()) {
    for (const Block& block : document.blocks) {
      if (block.language == "json") {
        const std::string file = session.write("block.json", joinLines(block.lines));
        const Outcome outcome = session.run({"ostrevin-host --desktop " + file}).at(0);
        EXPECT_EQ(outcome.status, 0) << document.place(block.line) << "\n" << joinLines(outcome.printed);
      }
    }
  }
}

TEST(Documents, ShowThePictureThatTheToolDraws) {
  Session session;
  const Outcome outcome = session.run({"ostrevin-host --desktop devhost/example-desktop.json layout -o -"}).at(0);
  EXPECT_EQ(joinLines(outcome.printed), readFile(PROJECT_FOLDER "/docs/example-desktop.svg"))
      << "docs/example-desktop.svg is made by: ostrevin-host --desktop devhost/example-desktop.json layout -o -";
}

// --- what the tests above rest on

TEST(DocumentSession, ContinuesAfterACommandThatFails) {
  Session session;
  const auto outcomes = session.run({"export DOCS_WORD=kept", "ostrevin-host nonsense", "echo $?"});
  ASSERT_EQ(outcomes.size(), 3U);
  EXPECT_EQ(outcomes[1].status, 2);
  EXPECT_THAT(outcomes[2].printed, ElementsAre("2"));
  EXPECT_THAT(session.run({"echo $DOCS_WORD"}).at(0).printed, ElementsAre("kept"));
}

TEST(DocumentCommands, AreReadFromConsoleBlocks) {
  const Document document =
      parseMarkdown("x.md", "# Head\n\n```console\n$ echo a\na\n$ export X=1\n```\n\n```\n$ no command\n```\n");
  ASSERT_EQ(document.blocks.size(), 2U);
  const auto commands = commandsOf(document.blocks[0]);
  ASSERT_EQ(commands.size(), 2U);
  EXPECT_EQ(commands[0].text, "echo a");
  EXPECT_EQ(commands[0].line, 4U);
  EXPECT_THAT(commands[0].output, ElementsAre("a"));
  EXPECT_THAT(commands[1].output, IsEmpty());
  EXPECT_THAT(commandsOf(document.blocks[1]), IsEmpty());
}

TEST(DocumentNames, ThatDoNotExistAreReported) {
  Names names;
  EXPECT_THAT(names.missingIn("scripts/build tsan threads_tests && ctest --preset tsan -L threads"), IsEmpty());
  EXPECT_THAT(names.missingIn("scripts/bild release"), ElementsAre("scripts/bild"));
  EXPECT_THAT(names.missingIn("PRESET=release2 ./test"), ElementsAre("the preset release2"));
  EXPECT_THAT(names.missingIn("./tests2 -R NoTestOf"
                              "ThisName"),
              ElementsAre("the program ./tests2",
                          "a test named NoTestOf"
                          "ThisName"));
  EXPECT_THAT(names.missingIn("cmake --build --preset release --target nothing_at_all"),
              ElementsAre("the target nothing_at_all"));
  EXPECT_THAT(names.missingIn("ostrevin-host --jason call GetRect"), ElementsAre("the option --jason"));
  EXPECT_THAT(names.missingIn("./run liszt"), ElementsAre("the command liszt"));
  EXPECT_THAT(names.missingPathsIn("see docs/nowhere.md, `plugin/display.h` and plugin/disp*."),
              ElementsAre("docs/nowhere.md"));
}

TEST(DocumentOutput, IsComparedLineByLineWithEllipses) {
  EXPECT_TRUE(showsOutput({}, {}));
  EXPECT_FALSE(showsOutput({}, {"a"}));
  EXPECT_FALSE(showsOutput({"a"}, {}));
  EXPECT_TRUE(showsOutput({"a: "}, {"a:"}));
  EXPECT_FALSE(showsOutput({"a"}, {"ab"}));
  EXPECT_FALSE(showsOutput({"[a]*"}, {"a"}));
  EXPECT_TRUE(showsOutput({"a … c …"}, {"a b c d"}));
  EXPECT_FALSE(showsOutput({"a …/c"}, {"a /b/cd"}));
  EXPECT_TRUE(showsOutput({"a", "…", "z"}, {"a", "b", "c", "z"}));
  EXPECT_TRUE(showsOutput({"a", "…", "z"}, {"a", "z"}));
  EXPECT_FALSE(showsOutput({"a", "…", "z"}, {"a", "b"}));
}

}  // namespace
}  // namespace docs_test
