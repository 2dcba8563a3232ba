// The help of ostrevin-host, and what repeats it: the man page and the shells' completion.
#include <gmock/gmock.h>

#include <regex>
#include <set>

#include "devhost/tool/tool_runner.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::StartsWith;
using tool_test::contentOf;
using tool_test::runTool;

constexpr const char* kBashFile = OSTREVIN_SOURCES "/devhost/completion/ostrevin-host.bash";
constexpr const char* kZshFile = OSTREVIN_SOURCES "/devhost/completion/_ostrevin-host";
constexpr const char* kManPage = OSTREVIN_SOURCES "/docs/ostrevin-host.1";

using Words = std::vector<std::string>;

std::string helpOf(const std::string& command) {
  return runTool(command.empty() ? Words{"--help"} : Words{command, "--help"}).output;
}

/// The lines of a part of a help text, without their indentation.
Words sectionOf(const std::string& help, const std::string& heading) {
  Words lines;
  bool inside = false;
  for (const std::string& line : tool_test::linesOf(help)) {
    if (inside && line.starts_with("  ")) {
      lines.push_back(line.substr(2));
    } else {
      inside = line == heading;
    }
  }
  return lines;
}

Words commands() {
  Words names;
  for (const std::string& line : sectionOf(helpOf(""), "Subcommands:")) {
    if (line.front() != ' ') {
      names.push_back(line.substr(0, line.find(' ')));
    }
  }
  return names;
}

/// The names of a command's own options, or of the common ones for an empty name.
Words optionsOf(const std::string& command) {
  Words names;
  const std::regex name("(^|,)(--?[a-z]+)");
  for (const std::string& line : sectionOf(helpOf(command), "Options:")) {
    const std::string before = line.substr(0, line.find(' '));
    for (std::sregex_iterator match(before.begin(), before.end(), name), end; match != end; ++match) {
      names.push_back((*match)[2]);
    }
  }
  return names;
}

/// Bash's completions of the last of these words, of which the first is the tool's name.
Words offered(Words words) {
  const std::string script =
      "source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
      "_ostrevin_host \"$1\" \"${COMP_WORDS[COMP_CWORD]}\" \"${COMP_WORDS[COMP_CWORD - 1]}\"; "
      "printf '%s\\n' \"${COMPREPLY[@]}\"";
  words.insert(words.begin(), {"bash", "--norc", "-c", script, "bash", kBashFile});
  const auto result = support::run(words, {"DISPLAY=", "OSTREVIN_DESKTOP="});
  EXPECT_THAT(result.errors, IsEmpty());
  return tool_test::linesOf(result.output);
}

TEST(Help, ListsCommandsAndOptions) {
  EXPECT_THAT(commands(),
              ElementsAre("list", "layout", "watch", "doctor", "methods", "call", "profiles", "tag", "qv02"));
  EXPECT_THAT(optionsOf(""), ElementsAre("-h", "--help", "--json", "--check", "--plugin", "--desktop", "--version"));
  EXPECT_THAT(optionsOf("layout"), ElementsAre("-h", "--help", "-o", "--output", "--ascii", "--width"));
}

TEST(Help, BeginsWithExamples) {
  for (const std::string& command : commands()) {
    const std::string help = helpOf(command);
    const Words examples = sectionOf(help, "Examples:");
    EXPECT_THAT(examples, Contains(AllOf(StartsWith("ostrevin-host"), HasSubstr(command)))) << command;
    EXPECT_LT(help.find("Examples:"), help.find("Usage:")) << command;
    EXPECT_LT(help.find("Usage:"), help.find("Options:")) << command;
  }
}

TEST(Help, HasNoLineOverHundredColumns) {
  Words all = commands();
  all.emplace_back();
  for (const std::string& command : all) {
    for (const std::string& line : tool_test::linesOf(helpOf(command))) {
      EXPECT_LE(line.size(), 100U) << line;
    }
  }
}

/// Runs the examples that need nothing but the tool, as written, in a shell that finds it.
TEST(Help, HasWorkingExamples) {
  for (const std::string& command : commands()) {
    for (const std::string& example : sectionOf(helpOf(command), "Examples:")) {
      const std::string line = example.substr(0, example.find("   "));
      if (line.find("FILE") != std::string::npos || line.find('|') != std::string::npos) {
        continue;
      }
      const support::TemporaryFolder folder;
      const auto result =
          support::run({"sh", "-c",
                        "cd \"$1\" && cp \"$2\" office.json && cp \"$3\" other.so && cp \"$4\" wide.icc && "
                        "PATH=$5:$PATH && export PATH && timeout -s INT 0.5 sh -c \"exec $6\"",
                        "sh", folder.path(), OSTREVIN_SOURCES "/devhost/example-desktop.json", SAMPLE_PLUGIN,
                        "/usr/share/color/icc/colord/sRGB.icc", OSTREVIN_FOLDER, line},
                       {"DISPLAY=", "OSTREVIN_DESKTOP=", "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere"});
      EXPECT_NE(result.exit_status, 2) << line << '\n' << result.errors;
      EXPECT_NE(result.exit_status, -1) << line;
    }
  }
}

TEST(ManPage, HasNoMistakes) {
  const auto lint = support::run({"mandoc", "-T", "lint", "-W", "warning", kManPage});
  EXPECT_EQ(lint.exit_status, 0);
  EXPECT_THAT(lint.output + lint.errors, IsEmpty());
}

TEST(ManPage, NamesEveryCommandAndOptionOnly) {
  const std::string shown = support::runSuccessfully({"mandoc", "-T", "ascii", kManPage});
  const std::string text = std::regex_replace(shown, std::regex(".\b"), "");
  Words all = commands();
  std::set<std::string> known;
  for (const std::string& command : all) {
    EXPECT_TRUE(std::regex_search(text, std::regex("\n     " + command + "[ \n]"))) << command;
    const Words options = optionsOf(command);
    known.insert(options.begin(), options.end());
  }
  const Words options = optionsOf("");
  known.insert(options.begin(), options.end());
  for (const std::string& option : known) {
    EXPECT_TRUE(std::regex_search(text, std::regex("[ ,]" + option + "[ ,\n]"))) << option;
  }
  const std::regex name("--[a-z]+");
  for (std::sregex_iterator match(text.begin(), text.end(), name), end; match != end; ++match) {
    EXPECT_THAT(known, Contains(match->str()));
  }
}

TEST(BashCompletion, OffersEveryCommand) {
  EXPECT_THAT(offered({"ostrevin-host", ""}), ::testing::UnorderedElementsAreArray(commands()));
  EXPECT_THAT(offered({"ostrevin-host", "--json", "la"}), ElementsAre("layout"));
  EXPECT_THAT(offered({"ostrevin-host", "--plugin", "x.so", "do"}), ElementsAre("doctor"));
}

TEST(BashCompletion, OffersEveryOptionOnly) {
  EXPECT_THAT(offered({"ostrevin-host", "-"}), ::testing::UnorderedElementsAreArray(optionsOf("")));
  for (const std::string& command : commands()) {
    Words expected = optionsOf(command);
    for (const std::string& option : optionsOf("")) {
      if (option != "-h" && option != "--help" && option != "--version") {
        expected.push_back(option);
      }
    }
    EXPECT_THAT(offered({"ostrevin-host", command, "-"}), ::testing::UnorderedElementsAreArray(expected)) << command;
  }
}

TEST(BashCompletion, OffersMethodsDisplaysAndFiles) {
  EXPECT_THAT(offered({OSTREVIN_HOST, "call", "GetP"}), ElementsAre("GetProfilePath"));
  EXPECT_THAT(offered({OSTREVIN_HOST, "profiles", ""}), ElementsAre("1", "2", "3", "4"));  // the example desktop's
  EXPECT_THAT(offered({"ostrevin-host", "tag", "/usr/share/color/ic"}), ElementsAre("/usr/share/color/icc"));
  EXPECT_THAT(offered({"ostrevin-host", "--desktop", "li"}), ElementsAre("live"));
  EXPECT_THAT(offered({"ostrevin-host", "watch", "--count", ""}), ElementsAre(""));
}

TEST(ZshCompletion, NamesEveryCommandAndOption) {
  const std::string file = contentOf(kZshFile);
  EXPECT_THAT(file, StartsWith("#compdef ostrevin-host\n"));
  for (const std::string& command : commands()) {
    EXPECT_TRUE(std::regex_search(file, std::regex("['\"]" + command + ":"))) << command;
    for (const std::string& option : optionsOf(command)) {
      EXPECT_TRUE(std::regex_search(file, std::regex("[{,')]" + option + "[\\[,}]"))) << option;
    }
  }
  for (const std::string& option : optionsOf("")) {
    EXPECT_TRUE(std::regex_search(file, std::regex("[{,')]" + option + "[\\[,}]"))) << option;
  }
}

}  // namespace
