// Unusable desktop files: one line with the place and the reason, and a desktop without displays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "support/temporary_folder.h"

namespace {

using namespace platform::desktop;
using testing::HasSubstr;
using testing::StartsWith;

std::string errorOf(const std::string& path) {
  try {
    readScript(path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

/// "LINE: REASON" for a file with this content.
std::string errorIn(const std::string& content) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("desktop.json", content);
  const std::string text = errorOf(path);
  EXPECT_THAT(text, StartsWith(path + ":"));
  EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; })) << text;
  return text.substr(path.size() + 1);
}

/// A display on line 1 with further members that begin on line 2.
std::string displayWith(const std::string& members) {
  return "{\"displays\": [{\"number\": 1, \"bounds\": [0, 0, 1, 1],\n" + members + "}]}";
}

TEST(DesktopFileError, NamesNoLineOfAFileThatCannotBeRead) {
  const support::TemporaryFolder folder;
  EXPECT_EQ(errorOf("/nowhere/desktop.json"), "/nowhere/desktop.json: No such file or directory");
  EXPECT_EQ(errorOf(folder.path()), folder.path() + ": not a regular file");
}

TEST(DesktopFileError, DoesNotWaitForTheWriterOfAPipe) {
  const support::TemporaryFolder folder;
  ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorOf(folder.path("pipe")), folder.path("pipe") + ": not a regular file");
}

TEST(DesktopFileError, NamesTheLineOfASyntaxError) {
  EXPECT_THAT(errorIn(""), StartsWith("1: invalid JSON: "));
  EXPECT_THAT(errorIn("{\n\n\"displays\": [,]\n}"), StartsWith("3: invalid JSON: "));
  EXPECT_THAT(errorIn("{\"displays\": [\n1\n2]}"), StartsWith("3: invalid JSON: "));
  EXPECT_THAT(errorIn("{}\n{}"), StartsWith("2: invalid JSON: "));
  EXPECT_THAT(errorIn("{\n\"displays\""), StartsWith("2: invalid JSON: "));
  EXPECT_THAT(errorIn("{\n\"a\xFF\": 1}"), StartsWith("2: invalid JSON: "));
  EXPECT_THAT(errorIn("{\"a\": \"\x1B[2J\"}"), StartsWith("1: invalid JSON: "));
}

TEST(DesktopFileError, RejectsNumbersThatAreNotFinite) {
  EXPECT_THAT(errorIn("{\"screens\": [{\"scale\":\nNaN}]}"), StartsWith("2: invalid JSON: "));
  EXPECT_THAT(errorIn("{\"screens\": [{\"scale\":\nInfinity}]}"), StartsWith("2: invalid JSON: "));
  EXPECT_THAT(errorIn("{\"screens\": [{\"scale\":\n1e999}]}"), StartsWith("2: invalid JSON: "));
}

TEST(DesktopFileError, NamesTheLineAndTypeOfAWrongValue) {
  EXPECT_EQ(errorIn("[]"), "1: a desktop must be an object");
  EXPECT_EQ(errorIn("\n\nnull"), "3: a desktop must be an object");
  EXPECT_EQ(errorIn("{\"displays\":\n{}}"), "2: displays must be an array");
  EXPECT_EQ(errorIn("{\"displays\": [\n1]}"), "2: a display must be an object");
  EXPECT_EQ(errorIn("{\"screens\": [{},\n\"x\"]}"), "2: a screen must be an object");
  EXPECT_EQ(errorIn("{\"services\": [{\"names\":\n[]}]}"), "2: names must be an object from language to name");
  EXPECT_EQ(errorIn("{\"services\": [{\"names\": {\"en\":\n1}}]}"), "2: a name must be a string");
  EXPECT_EQ(errorIn("{\"services\": [{\"info\":\n0}]}"), "2: info must be true or false");
  EXPECT_EQ(errorIn("{\"accepts_profiles\":\n\"yes\"}"), "2: accepts_profiles must be true or false");
  EXPECT_EQ(errorIn("{\"device_walk\":\ntrue}"), "2: a walk must be an object");
  EXPECT_EQ(errorIn(displayWith("\"name\": 5")), "2: name must be a string");
  EXPECT_EQ(errorIn(displayWith("\"scale\": \"2\"")), "2: scale must be a number");
  EXPECT_EQ(errorIn(displayWith("\"profiles\": [\n5]")), "3: a profile must be an object");
}

TEST(DesktopFileError, NamesTheRangeOfANumber) {
  EXPECT_EQ(errorIn(displayWith("\"vendor\": -1")), "2: vendor must be a whole number from 0 to 4294967295");
  EXPECT_EQ(errorIn(displayWith("\"model\": 4294967296")), "2: model must be a whole number from 0 to 4294967295");
  EXPECT_EQ(errorIn(displayWith("\"serial\": 1.5")), "2: serial must be a whole number from 0 to 4294967295");
  EXPECT_EQ(errorIn("{\"device_walk\": {\"delay_ms\":\n86400001}}"),
            "2: delay_ms must be a whole number from 0 to 86400000");
  EXPECT_EQ(errorIn("{\"screens\": [{}],\n\"main_screen\": 1}"), "2: main_screen must be a whole number from 0 to 0");
  EXPECT_EQ(errorIn("{\n\"main_screen\": 0}"), "2: main_screen must be null when there are no screens");
}

TEST(DesktopFileError, QuotesAnUnknownKeyEscapedAndShortened) {
  EXPECT_EQ(errorIn("{\n\"display\":\n[]}"), "2: unknown key \"display\"");
  EXPECT_EQ(errorIn(displayWith("\"nmae\": \"\"")), "2: unknown key \"nmae\"");
  EXPECT_EQ(errorIn(displayWith("\"\\u001b\\\"\": \"\"")), "2: unknown key \"\\x1B\\x22\"");
  EXPECT_EQ(errorIn(displayWith("\"" + std::string(1000, 'k') + "\": 1")),
            "2: unknown key \"" + std::string(60, 'k') + "...\"");
}

TEST(DesktopFileError, RejectsAKeyThatOccursTwice) {
  EXPECT_EQ(errorIn(displayWith("\"name\": \"\",\n\"name\": \"\"")), "3: the key \"name\" occurs twice in one object");
}

TEST(DesktopFileError, NamesTheFirstLineOfAnObjectWithoutARequiredKey) {
  EXPECT_EQ(errorIn("{\"displays\": [\n{\n\"bounds\": [0, 0, 1, 1]}]}"), "2: number is missing");
  EXPECT_EQ(errorIn("{\"displays\": [\n{\n\"number\": 1}]}"), "2: bounds is missing");
  EXPECT_EQ(errorIn(displayWith("\"profiles\": [\n{}]")), "3: path is missing");
}

TEST(DesktopFileError, RejectsADisplayNumberThatIsZeroOrOccursTwice) {
  EXPECT_EQ(errorIn("{\"displays\": [{\n\"number\":\n0}]}"), "3: number must be a whole number from 1 to 4294967295");
  EXPECT_EQ(errorIn("{\"displays\": [{\"number\": 7, \"bounds\": [0, 0, 1, 1]},\n{\"number\": 7}]}"),
            "2: display number 7 occurs twice");
}

TEST(DesktopFileError, RejectsRectanglesWithoutFourNumbers) {
  EXPECT_EQ(errorIn("{\"displays\": [{\"number\": 1, \"bounds\":\n[0, 0, 1]}]}"),
            "2: bounds must be four numbers: x, y, width, height");
  EXPECT_EQ(errorIn("{\"displays\": [{\"number\": 1, \"bounds\": [0, 0, 1,\n\"1\"]}]}"), "2: bounds must be a number");
}

TEST(DesktopFileError, RejectsUuidsOfAnotherShape) {
  for (const char* const text :
       {"", "37D8832A", "37D8832A-2D66-02CA-B9F7-8F30A301B23G", "37D8832A-2D66-02CA-B9F7-8F30A301B2300",
        "37D8832A2D6602CAB9F78F30A301B230....", "{7D8832A-2D66-02CA-B9F7-8F30A301B230"}) {
    EXPECT_THAT(errorIn(displayWith("\"uuid\": \"" + std::string(text) + "\"")), StartsWith("2: uuid must be a UUID"))
        << text;
  }
}

TEST(DesktopFileError, RejectsEmptyPathsAndPathsWithAZero) {
  EXPECT_EQ(errorIn("{\"installed_profiles\": [\n\"\"]}"), "2: an installed profile must be a non-empty path");
  EXPECT_THAT(errorIn("{\"installed_profiles\": [\n\"/a\\u0000b\"]}"), StartsWith("2: "));
}

TEST(DesktopFileError, RejectsProfilesOfADisplayWithoutUuid) {
  EXPECT_EQ(errorIn(displayWith("\"uuid\": null,\n\"profiles\": []")), "3: a display without a uuid has no profiles");
}

TEST(DesktopFileError, LimitsDepthLengthAndKeys) {
  EXPECT_EQ(errorIn(std::string(100000, '[')), "1: nested more than 16 deep");
  EXPECT_EQ(errorIn("{}" + std::string(1 << 20, ' ')), "1: longer than 1048576 bytes");
  std::string keys = "{";
  for (int i = 0; i < 300; ++i) {
    keys += "\n\"k" + std::to_string(i) + "\": 0,";
  }
  EXPECT_EQ(errorIn(keys + "\"end\": 0}"), "258: more than 256 keys in one object");
}

TEST(DesktopFileError, IsASyntaxErrorForEveryTruncation) {
  std::ifstream example(EXAMPLE_DESKTOP);
  const std::string whole((std::istreambuf_iterator<char>(example)), {});
  const std::size_t end = whole.rfind('}');
  ASSERT_NE(end, std::string::npos);
  for (std::size_t length = 0; length <= end; length += 7) {
    EXPECT_THAT(errorIn(whole.substr(0, length)), HasSubstr(": invalid JSON: ")) << length;
  }
}

TEST(DesktopFileError, IsPrintedAndLeavesADesktopWithoutDisplays) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("desktop.json", displayWith("\"nmae\": \"\""));
  ASSERT_EQ(::setenv("OSTREVIN_DESKTOP", path.c_str(), 1), 0);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(current()->arrangement()->displays.empty());
  EXPECT_TRUE(current()->arrangement()->screens.empty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), path + ":2: unknown key \"nmae\"\n");
  setCurrent(nullptr);
}

TEST(CurrentDesktop, IsTheFileNamedByOSTREVIN_DESKTOP) {
  ASSERT_EQ(::setenv("OSTREVIN_DESKTOP", EXAMPLE_DESKTOP, 1), 0);
  EXPECT_EQ(current()->arrangement()->displays.size(), 4u);
  setCurrent(nullptr);
}

}  // namespace
