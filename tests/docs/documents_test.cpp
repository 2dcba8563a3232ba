// The documents against what is there: commands, outputs, links, paths, JSON.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>

#include "docs/commands.h"
#include "docs/markdown.h"
#include "docs/names.h"
#include "docs/session.h"

namespace docs_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + '\n';
  }
  return text;
}

/// The project's documents.
const std::vector<Document>& documents() {
  static const std::vector<Document> read = readDocuments(PROJECT_FOLDER);
  return read;
}

const Document* find(const std::string& name) {
  const auto found = std::find_if(documents().begin(), documents().end(),
                                  [&](const Document& document) { return document.name == name; });
  return found == documents().end() ? nullptr : &*found;
}

/// Whether the command says by its status what it found out, and not whether it ran.
bool answersByItsStatus(const std::string& command) { return command.starts_with("./run doctor"); }

/// Runs a document's commands; answers how many ran.
std::size_t checkCommands(const Document& document) {
  std::size_t count = 0;
  Session session;
  for (const Block& block : document.blocks) {
    const std::vector<Outcome> outcomes = session.run(commandsOf(block));
    count += outcomes.size();
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      const auto& [command, status, printed] = outcomes[i];
      const std::string what = document.place(command.line) + ": " + command.text + "\nprints\n" + joined(printed);
      const bool status_is_shown = i + 1 < outcomes.size() && outcomes[i + 1].command.text == "echo $?";
      EXPECT_TRUE(status == 0 || status_is_shown || (status == 1 && answersByItsStatus(command.text)))
          << what << "and ends with status " << status;
      EXPECT_TRUE(!command.output || showsWhatWasPrinted(*command.output, printed))
          << what << "but the document shows\n"
          << joined(*command.output);
    }
  }
  return count;
}

TEST(Documents, ShowWhatTheirCommandsPrint) {
  std::size_t count = 0;
  for (const Document& document : documents()) {
    count += checkCommands(document);
  }
  std::printf("%zu commands of %zu documents\n", count, documents().size());
  EXPECT_GT(count, 40U);
}

TEST(Documents, HaveNoCommandThatIsNeitherRunNorExplained) {
  for (const Document& document : documents()) {
    for (const Block& block : document.blocks) {
      for (const Command& command : commandsOf(block)) {
        const Treatment treatment = treatmentOf(command.text);
        EXPECT_NE(treatment.kind, Treatment::Kind::kUnknown)
            << document.place(command.line) << ": " << command.text
            << "\nis neither run nor in the table of commands that are not (tests/docs/commands.cpp)";
        EXPECT_FALSE(treatment.kind == Treatment::Kind::kNotRun && command.output && !command.output->empty())
            << document.place(command.line) << ": " << command.text << "\nhas an output that no test compares: it "
            << treatment.reason;
      }
    }
  }
}

TEST(Documents, NameCommandsThatAreThere) {
  const Names names;
  for (const Document& document : documents()) {
    std::vector<Located> commands;
    for (const Block& block : document.blocks) {
      for (const Command& command : commandsOf(block)) {
        commands.push_back({command.text, command.line});
      }
    }
    std::copy_if(document.code_spans.begin(), document.code_spans.end(), std::back_inserter(commands),
                 [](const Located& span) { return looksLikeCommand(span.text); });
    for (const Located& command : commands) {
      EXPECT_THAT(names.missingIn(command.text), IsEmpty()) << document.place(command.line) << ": " << command.text;
    }
  }
}

TEST(Documents, NamePathsThatAreThere) {
  const Names names;
  for (const Document& document : documents()) {
    for (const Located& line : document.prose) {
      EXPECT_THAT(names.missingPathsIn(line.text), IsEmpty()) << document.place(line.line);
    }
  }
  for (const auto& entry : std::filesystem::directory_iterator(PROJECT_FOLDER "/docs")) {
    // Not the pictures' own markup, where "/" ends an element.
    if (entry.path().extension() == ".svg") {
      const std::string text = std::regex_replace(readFile(entry.path()), std::regex("<[^>]*>"), "\n");
      EXPECT_THAT(names.missingPathsIn(text), IsEmpty()) << entry.path();
    }
  }
}

TEST(Documents, LinkToWhatIsThere) {
  std::size_t count = 0;
  for (const Document& document : documents()) {
    for (const Located& link : document.links) {
      if (link.text.find("://") != std::string::npos) {
        continue;
      }
      ++count;
      const std::string place = document.place(link.line) + ": " + link.text;
      const std::size_t hash = link.text.find('#');
      const auto folder = std::filesystem::path(document.name).parent_path();
      const std::string target =
          hash == 0 ? document.name : (folder / link.text.substr(0, hash)).lexically_normal().string();
      EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(PROJECT_FOLDER) / target)) << place;
      if (hash != std::string::npos) {
        const Document* const linked = find(target);
        ASSERT_NE(linked, nullptr) << place;
        EXPECT_TRUE(std::any_of(linked->headings.begin(), linked->headings.end(), [&](const std::string& heading) {
          return fragmentOf(heading) == link.text.substr(hash + 1);
        })) << place;
      }
    }
  }
  EXPECT_GT(count, 20U);
}

TEST(Documents, HoldJsonThatIsADesktopFile) {
  const Session session;
  for (const Document& document : documents()) {
    for (const Block& block : document.blocks) {
      if (block.language != "json") {
        continue;
      }
      const std::string place = document.place(block.line);
      const auto value = nlohmann::json::parse(joined(block.lines), nullptr, false);
      ASSERT_FALSE(value.is_discarded()) << place << " is no JSON";
      // What the tool prints belongs into a console block, where it is compared with what it prints.
      EXPECT_FALSE(value.contains("format")) << place;
      int status = 0;
      const std::string printed =
          session.runTool({"--desktop", session.write("block.json", joined(block.lines)), "list"}, status);
      EXPECT_EQ(status, 0) << place << "\n" << printed;
    }
  }
}

// --- what the tests above rest on

TEST(DocumentSession, GoesOnAfterACommandThatFailsAndTellsItsStatus) {
  Session session;
  const auto outcomes = session.run({{"export DOCS_WORD=kept", 1, {}},
                                     {"ostrevin-host nonsense", 2, {}},
                                     {"echo $?", 3, {}},
                                     {"cmake --build build", 4, {}},
                                     {"echo -n \"$DOCS_WORD\"", 5, {}}});
  ASSERT_EQ(outcomes.size(), 4U);
  EXPECT_EQ(outcomes[1].status, 2);
  EXPECT_EQ(outcomes[1].printed.size(), 1U);
  EXPECT_THAT(outcomes[2].printed, ElementsAre("2"));
  EXPECT_THAT(outcomes[3].printed, ElementsAre("kept"));
  EXPECT_THAT(session.run({{"echo $DOCS_WORD", 1, {}}}).at(0).printed, ElementsAre("kept"));
}

TEST(DocumentCommands, AreFoundInBlocks) {
  const Document document = parseMarkdown("x.md",
                                          "# Head\n\n    ./test -R x\n    # comment\n\n```console\n$ echo a \\\n"
                                          "  b\na b\n$ export X=1\n```\n\n```\nGetRect(x As Integer)\n```\n");
  ASSERT_EQ(document.blocks.size(), 3U);
  const auto indented = commandsOf(document.blocks[0]);
  ASSERT_EQ(indented.size(), 1U);
  EXPECT_EQ(indented[0].text, "./test -R x");
  EXPECT_EQ(indented[0].line, 3U);
  EXPECT_FALSE(indented[0].output);
  const auto session = commandsOf(document.blocks[1]);
  ASSERT_EQ(session.size(), 2U);
  EXPECT_EQ(session[0].text, "echo a \\\n  b");
  EXPECT_THAT(*session[0].output, ElementsAre("a b"));
  EXPECT_THAT(*session[1].output, IsEmpty());
  EXPECT_THAT(commandsOf(document.blocks[2]), IsEmpty());
}

TEST(DocumentCommands, OfNoKnownKindAreNoticed) {
  EXPECT_EQ(treatmentOf("rm -rf build").kind, Treatment::Kind::kUnknown);
  EXPECT_EQ(treatmentOf("./running").kind, Treatment::Kind::kUnknown);
  EXPECT_EQ(treatmentOf("A=1 B=\"2 3\" ./run --json").kind, Treatment::Kind::kRun);
  EXPECT_EQ(treatmentOf("PRESET=asan ./test").kind, Treatment::Kind::kNotRun);
}

TEST(DocumentCommands, ThatNameWhatIsNotThereAreNoticed) {
  const Names names;
  EXPECT_THAT(names.missingIn("scripts/build tsan threads_tests && ctest --preset tsan -L threads"), IsEmpty());
  EXPECT_THAT(names.missingIn("scripts/bild release"), ElementsAre("the program scripts/bild"));
  EXPECT_THAT(names.missingIn("PRESET=release2 ./test"), ElementsAre("the preset release2"));
  EXPECT_THAT(names.missingIn("cmake --build --preset debug --target nothing_at_all"),
              ElementsAre("the preset debug", "the target nothing_at_all"));
  EXPECT_THAT(names.missingIn("ostrevin-host --jason call GetRect"), ElementsAre("the option --jason"));
  EXPECT_THAT(names.missingIn("./run liszt"), ElementsAre("the command liszt"));
  EXPECT_THAT(names.missingPathsIn("see docs/nowhere.md, `plugin/display.h` and platform/desktop/colord/*."),
              ElementsAre("docs/nowhere.md"));
}

TEST(DocumentOutput, IsComparedLineByLine) {
  EXPECT_TRUE(showsWhatWasPrinted({}, {}));
  EXPECT_FALSE(showsWhatWasPrinted({}, {"a"}));
  EXPECT_FALSE(showsWhatWasPrinted({"a"}, {}));
  EXPECT_TRUE(showsWhatWasPrinted({"a: "}, {"a:"}));
  EXPECT_FALSE(showsWhatWasPrinted({"a"}, {"ab"}));
  EXPECT_FALSE(showsWhatWasPrinted({"b"}, {"ab"}));
}

TEST(DocumentOutput, HasEllipsesForWhatVaries) {
  EXPECT_TRUE(showsWhatWasPrinted({"a …/c"}, {"a /b/c"}));
  EXPECT_TRUE(showsWhatWasPrinted({"a … c …"}, {"a b c d"}));
  EXPECT_FALSE(showsWhatWasPrinted({"a …/c"}, {"b /b/c"}));
  EXPECT_FALSE(showsWhatWasPrinted({"a …/c"}, {"a /b/cd"}));
  EXPECT_TRUE(showsWhatWasPrinted({"a", "…", "z"}, {"a", "b", "c", "z"}));
  EXPECT_TRUE(showsWhatWasPrinted({"a", "…", "z"}, {"a", "z"}));
  EXPECT_FALSE(showsWhatWasPrinted({"a", "…", "z"}, {"a", "b"}));
}

}  // namespace
}  // namespace docs_test
