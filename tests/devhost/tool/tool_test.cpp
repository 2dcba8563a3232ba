// ostrevin-host as a program: what it prints, and its exit status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "devhost/tool/tool_runner.h"
#include "support/icc_maker.h"
#include "support/process.h"

namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using tool_test::runOnTerminal;
using tool_test::runTool;
using tool_test::ToolRun;
using tool_test::ToolTest;

ToolRun runSample(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"--plugin", SAMPLE_PLUGIN, "--desktop", "live"});
  return runTool(arguments);
}

constexpr const char* kTwoDisplays = R"({
  "displays": [
    {"number": 7, "bounds": [0, 0, 1440, 900], "name": "Red\u001b[31m\nLine", "model": 1, "scale": 2,
     "profiles": ["/p/a.icc", "/p/b.icc"]},
    {"number": 9, "bounds": [-1440.5, 0, 1440, 900], "name": "Zweiter", "model": 2, "profiles": ["/p/b.icc"]}
  ],
  "installed_profiles": [
    {"class": "mntr", "description": "B", "path": "/p/a.icc"},
    {"class": "mntr", "description": "A", "path": "/p/b.icc"},
    {"class": "scnr", "description": "Scanner", "path": "/p/c.icc"}
  ]
})";

constexpr const char* kDisplayWithoutProfile = R"({"displays": [{"number": 9, "bounds": [0, 0, 800, 600]}]})";

// --- list

TEST_F(ToolTest, ListsDisplaysWithoutCommand) {
  const std::string desktop = write("desktop.json", kTwoDisplays);
  const ToolRun run = runTool({"--desktop", desktop});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.output,
            "Number  Index  Name               Bounds                    Scale  Profile\n"
            "7       0      Red\\x1b[31m\\nLine  1440 x 900 at 0, 0        2      /p/a.icc\n"
            "9       1      Zweiter            1440 x 900 at -1440.5, 0  1      /p/b.icc\n");
  EXPECT_THAT(run.errors, IsEmpty());
  EXPECT_EQ(runTool({"--desktop", desktop, "list"}).output, run.output);
}

TEST_F(ToolTest, ListsDisplaysAsJson) {
  const ToolRun run = runTool({"--json", "--desktop", write("desktop.json", kTwoDisplays)});
  EXPECT_EQ(run.exit_status, 0);
  const json document = run.document();
  EXPECT_EQ(document["format"], "ostrevin-host");
  EXPECT_EQ(document["version"], 1);
  EXPECT_EQ(document["command"], "list");
  ASSERT_EQ(document["displays"].size(), 2U);
  EXPECT_EQ(document["displays"][0],
            json::parse(R"({"number": 7, "index": 0, "name": "Red\u001b[31m\nLine", "scale": 2.0, "profile": "/p/a.icc",
                            "bounds": {"x": 0.0, "y": 0.0, "width": 1440.0, "height": 900.0}})"));
  EXPECT_EQ(document["displays"][1]["bounds"]["x"], -1440.5);
  EXPECT_EQ(document["displays"][1]["profile"], "/p/b.icc");
}

TEST_F(ToolTest, ListsDisplayWithoutNameAndProfile) {
  const std::string desktop = write("desktop.json", kDisplayWithoutProfile);
  EXPECT_EQ(runTool({"--desktop", desktop}).output,
            "Number  Index  Name     Bounds             Scale  Profile\n"
            "9       0      UNKNOWN  800 x 600 at 0, 0  1      -\n");
}

TEST_F(ToolTest, ReadsDesktopFileFromEnvironment) {
  const ToolRun run = runTool({"--json"}, {"", write("desktop.json", kTwoDisplays)});
  EXPECT_EQ(run.document()["displays"].size(), 2U);
}

TEST_F(ToolTest, OptionLiveOverrulesEnvironment) {
  const ToolRun run = runTool({"--desktop", "live"}, {"", write("desktop.json", kTwoDisplays)});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.output, "Number  Index  Name  Bounds  Scale  Profile\n");
  EXPECT_THAT(run.errors, IsEmpty());
}

TEST(Tool, ShowsExampleDesktopWithoutXServer) {
  for (const char* display : {"", ":64999"}) {
    const ToolRun run = runTool({"--json"}, {display});
    EXPECT_EQ(run.exit_status, 0);
    EXPECT_EQ(run.document()["displays"].size(), 4U);
    EXPECT_THAT(run.errors, StartsWith("ostrevin-host: no display server: showing the example desktop "));
    EXPECT_EQ(run.errorLines(), 1U);
  }
}

TEST_F(ToolTest, LoadsLibrariesOfLiveDesktopAtFirstUse) {
  for (const char* const file : {"bin/ostrevin-host", "lib/libOstrevin.so", "lib/libOstrevinPlatform.so"}) {
    std::filesystem::create_directories(std::filesystem::path(path(file)).parent_path());
    std::filesystem::copy_file(std::filesystem::path(OSTREVIN_FOLDER).parent_path() / file, path(file));
  }
  const std::string tool = path("bin/ostrevin-host");
  const auto tag = support::run({tool, "tag", write("empty.icc", ""), "rXYZ"});
  EXPECT_EQ(tag.output, "no\n");
  EXPECT_THAT(tag.errors, IsEmpty());
  const auto list =
      support::run({tool, "--desktop", "live", "list"}, {"WAYLAND_DISPLAY=/nowhere/wayland-0", "DISPLAY=:64999"});
  EXPECT_EQ(list.exit_status, 0);
  EXPECT_EQ(list.output, "Number  Index  Name  Bounds  Scale  Profile\n");
  EXPECT_THAT(list.errors, AllOf(HasSubstr("/lib/libOstrevinWayland.so: cannot open"),
                                 HasSubstr("/lib/libOstrevinX11.so: cannot open")));
}

TEST_F(ToolTest, ReportsUnusableDesktopFileInOneLine) {
  const ToolRun malformed = runTool({"--desktop", write("desktop.json", "{\n\"displays\": 3}")});
  EXPECT_EQ(malformed.exit_status, 2);
  EXPECT_THAT(malformed.errors, HasSubstr("desktop.json:2: "));
  EXPECT_EQ(malformed.errorLines(), 1U);
  EXPECT_THAT(malformed.output, IsEmpty());
  EXPECT_EQ(runTool({"--desktop", "/nowhere/desktop.json"}).exit_status, 2);
  EXPECT_EQ(runTool({}, {"", "/nowhere/desktop.json"}).exit_status, 2);
}

// --- methods and call

TEST(Tool, PrintsMethodsAsRegistered) {
  const ToolRun run = runTool({"methods"});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_THAT(run.output, StartsWith("Ostrevin, interface version 13\nSetObject( obj As Object )\n"));
  EXPECT_THAT(run.output, HasSubstr("\nDisplayIDForWindow(left as Integer, top as Integer, width as Integer, height as "
                                    "Integer) As UInt32\n"));
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 16);
  EXPECT_THAT(run.errors, IsEmpty());
}

TEST(Tool, PrintsMethodsAsJson) {
  const json document = runTool({"methods", "--json"}).document();
  EXPECT_EQ(document["announced_version"], 13);
  const json& module = document["modules"][0];
  EXPECT_EQ(module["name"], "Ostrevin");
  EXPECT_EQ(module["methods"].size(), 15U);
  EXPECT_EQ(module["methods"][3],
            json::parse(R"json({"declaration": "GetName(displayID As UInt32, byref name As String)", "name": "GetName",
                                "parameters": [{"name": "displayID", "type": "UInt32", "by_reference": false},
                                               {"name": "name", "type": "String", "by_reference": true}],
                                "result": null})json"));
}

TEST(Tool, CallsOtherPlugin) {
  EXPECT_THAT(runSample({"methods"}).output, StartsWith("Sample, interface version 13\nAdd("));
  EXPECT_EQ(runSample({"call", "add", "2", "-3"}).output, "result: -1\n");
  EXPECT_EQ(runSample({"call", "SetAll"}).output, "truth: True\nwhole: -5\nnumber: 0.5\ntext: new\n");
  EXPECT_EQ(runSample({"call", "Words", "a b"}).output, "result: 2 elements\n  a\n  b\n");
  EXPECT_EQ(runSample({"call", "Listen", "nil"}).output, "");
}

TEST(Tool, PassesArgumentsUnchanged) {
  for (const char* text : {"", "[a,b]", "%%", "{}", "a b", "a,b", "--", "$(x)", "'\"", "call", "list"}) {
    const std::vector<std::string> dashes =
        std::string(text) == "--" ? std::vector<std::string>{"--"} : std::vector<std::string>{};
    std::vector<std::string> arguments{"--json", "call", "Echo"};
    arguments.insert(arguments.end(), dashes.begin(), dashes.end());
    arguments.push_back(text);
    EXPECT_EQ(runSample(arguments).document()["result"], text) << text;
  }
  EXPECT_EQ(runSample({"call", "Echo", "--", "--json"}).output, "result: --json\n");
}

TEST(Tool, PrintsResultAsJson) {
  const json document = runSample({"call", "SetAll", "--json"}).document();
  EXPECT_EQ(document, json::parse(R"({"format": "ostrevin-host", "version": 1, "command": "call", "method": "SetAll",
      "by_reference": {"truth": true, "whole": -5, "number": 0.5, "text": "new"}})"));
  EXPECT_EQ(runSample({"call", "Half", "--json", "--", "-inf"}).document()["result"], nullptr);
  EXPECT_EQ(runSample({"call", "Most", "--json"}).document()["result"], INT64_MIN);
  EXPECT_EQ(runSample({"call", "Echo", "--json", "\xff"}).document()["result"], "\uFFFD");
}

TEST(Tool, ReportsWrongUsageInOneLine) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
      {{"call", "GetRecht", "1"}, "no method is called GetRecht: expected one of SetObject, "},
      {{"call", "GetRect"},
       "GetRect: expected 1 argument (5 with those by reference), got 0: GetRect(displayID As UInt32"},
      {{"call", "GetIndex", "a\nb"}, "got \"a\\nb\""},
      {{"profiles", "x"}, "expected UInt32 (0 to 4294967295), got \"x\""},
      {{"call"}, "METHOD is required"},
      {{"nonsense"}, "nonsense"},
      {{"--nonsense"}, "--nonsense"},
      {{"tag", "/p/a.icc"}, "SIG is required"},
  };
  for (const auto& [arguments, message] : wrong) {
    const ToolRun run = runTool(arguments);
    EXPECT_EQ(run.exit_status, 2) << message;
    EXPECT_THAT(run.errors, AllOf(StartsWith("ostrevin-host: "), HasSubstr(message)));
    EXPECT_EQ(run.errorLines(), 1U) << run.errors;
    EXPECT_THAT(run.output, IsEmpty());
  }
}

TEST(Tool, ReportsUnloadablePluginInOneLine) {
  const ToolRun run = runTool({"--plugin", "/nowhere/libNothing.so"});
  EXPECT_EQ(run.exit_status, 1);
  EXPECT_THAT(run.errors, HasSubstr("cannot load the plugin: /nowhere/libNothing.so"));
  EXPECT_EQ(run.errorLines(), 1U);
}

TEST_F(ToolTest, SetProfileReadsProfileBack) {
  const std::string desktop = write("desktop.json", kTwoDisplays);
  const std::string profile = write("new.icc", "");
  const ToolRun taken = runTool({"--desktop", desktop, "call", "SetProfile", "7", profile});
  EXPECT_EQ(taken.exit_status, 0);
  EXPECT_EQ(taken.output, "result: True\n");
  EXPECT_THAT(taken.errors, IsEmpty());

  const std::string other = write("other.json", kDisplayWithoutProfile);
  const ToolRun refused = runTool({"--desktop", other, "call", "SetProfile", "9", profile});
  EXPECT_EQ(refused.exit_status, 1);
  EXPECT_EQ(refused.output, "result: False\n");
  EXPECT_EQ(refused.errors, "ostrevin-host: display 9 does not report " + profile + " afterwards, but no profile\n");
}

TEST_F(ToolTest, SetProfileResolvesRelativePath) {
  const std::string desktop = write("desktop.json", R"({"accepts_profiles": false, "displays": [
      {"number": 9, "bounds": [0, 0, 800, 600], "name": "Nine", "profiles": ["/p/b.icc"]}]})");
  const ToolRun run = runTool({"--desktop", desktop, "call", "setprofile", "9", "./new.icc"});
  EXPECT_EQ(run.exit_status, 1);
  EXPECT_EQ(run.errors, "ostrevin-host: display 9 does not report " +
                            (std::filesystem::current_path() / "new.icc").string() + " afterwards, but /p/b.icc\n");
}

// --- profiles

TEST_F(ToolTest, ListsInstalledProfiles) {
  const ToolRun run = runTool({"--desktop", write("desktop.json", kTwoDisplays), "profiles"});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.output, "Name  Path\nB     /p/a.icc\nA     /p/b.icc\n");
}

TEST_F(ToolTest, ListsProfilesOfDisplay) {
  const std::string desktop = write("desktop.json", kTwoDisplays);
  const json document = runTool({"--desktop", desktop, "--json", "profiles", "7"}).document();
  EXPECT_EQ(document["display"], 7);
  EXPECT_EQ(document["profiles"],
            json::parse(R"([{"name": "B", "path": "/p/a.icc"}, {"name": "A", "path": "/p/b.icc"}])"));
  EXPECT_EQ(runTool({"--desktop", desktop, "profiles", "9"}).output, "Name  Path\nA     /p/b.icc\n");
}

TEST_F(ToolTest, ReportsUnknownDisplay) {
  const ToolRun run = runTool({"--desktop", write("desktop.json", kTwoDisplays), "profiles", "8"});
  EXPECT_EQ(run.exit_status, 0);
  EXPECT_EQ(run.errors, "ostrevin-host: no active display has the number 8\n");
}

std::string manyProfiles(std::size_t count) {
  json profiles = json::array();
  for (std::size_t i = 0; i < count; ++i) {
    profiles.push_back("/p/" + std::to_string(i) + ".icc");
  }
  return json{{"installed_profiles", profiles}}.dump();
}

TEST_F(ToolTest, ShowsProgressOfLongListsOnTerminal) {
  const std::string desktop = write("desktop.json", manyProfiles(1250));
  EXPECT_THAT(
      runOnTerminal({"--desktop", desktop, "profiles"}),
      AllOf(HasSubstr("\r1100 profiles"), HasSubstr("\r1200 profiles\r\x1b[K"), Not(HasSubstr("\r1000 profiles"))));
  EXPECT_THAT(runTool({"--desktop", desktop, "profiles"}).errors, IsEmpty());
  const std::string shorter = write("shorter.json", manyProfiles(1000));
  EXPECT_THAT(runOnTerminal({"--desktop", shorter, "profiles"}), Not(HasSubstr(" profiles")));
}

// --- tag and qv02

TEST_F(ToolTest, PrintsTagAndDocument) {
  const std::string element("text\0\0\0\0<a/>", 12);
  const std::string path = write("profile.icc", support::IccMaker().tag("QV02", element).bytes());
  const ToolRun tag = runTool({"tag", path, "QV02"});
  EXPECT_EQ(tag.exit_status, 0);
  EXPECT_EQ(tag.output, "yes\n");
  const ToolRun document = runTool({"qv02", path});
  EXPECT_EQ(document.exit_status, 0);
  EXPECT_EQ(document.output, "<a/>");
  EXPECT_EQ(runTool({"qv02", path, "--json"}).document()["document"], "<a/>");
}

TEST_F(ToolTest, ReportsMissingTagAndDocument) {
  const std::string path = write("empty.icc", "");
  const ToolRun tag = runTool({"tag", path, "rXYZ"});
  EXPECT_EQ(tag.exit_status, 1);
  EXPECT_EQ(tag.output, "no\n");
  EXPECT_THAT(tag.errors, IsEmpty());
  EXPECT_EQ(runTool({"tag", path, "rXYZ", "--json"}).document()["exists"], false);

  const ToolRun document = runTool({"qv02", path});
  EXPECT_EQ(document.exit_status, 1);
  EXPECT_THAT(document.output, IsEmpty());
  EXPECT_EQ(document.errors, "ostrevin-host: " + path + " has no readable QV02 document (code 466)\n");
  const json as_json = runTool({"--json", "qv02", path}).document();
  EXPECT_EQ(as_json["code"], 466);
  EXPECT_EQ(as_json["document"], nullptr);
  EXPECT_EQ(as_json["path"], path);
}

// --- check

TEST(Tool, CheckReportsUnreleasedString) {
  const ToolRun run = runSample({"--check", "call", "Keep", "kept\x1b"});
  EXPECT_EQ(run.exit_status, 3);
  EXPECT_EQ(run.errors, "ostrevin-host: not released: string \"kept\\x1b\" (5 bytes)\n");
}

TEST(Tool, CheckReportsWrongRelease) {
  const ToolRun run = runSample({"--check", "call", "ReleaseTwice", "text"});
  EXPECT_EQ(run.exit_status, 3);
  EXPECT_THAT(run.errors, HasSubstr("fault: REALUnlockString: releases a reference that it does not hold"));
}

TEST(Tool, CheckAcceptsPlugin) {
  const ToolRun run = runTool({"--check", "profiles", "1"});
  EXPECT_EQ(run.exit_status, 0) << run.errors;
  EXPECT_THAT(run.errors, Not(HasSubstr("not released")));
}

TEST(Tool, ReportsUnwritableOutput) {
  const support::ProcessResult run =
      support::run({"env", "DISPLAY=", "sh", "-c", std::string(OSTREVIN_HOST) + " methods > /dev/full"});
  EXPECT_EQ(run.exit_status, 1);
  EXPECT_THAT(run.errors, HasSubstr("the output could not be written"));
}

}  // namespace
