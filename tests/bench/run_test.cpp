// The benchmark command in its quick form, whose times mean nothing: none is looked at.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace {

using nlohmann::json;
using support::runSuccessfully;
using ::testing::Contains;
using ::testing::Each;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// Takes seconds on an idle computer.
constexpr std::chrono::minutes kLimit(5);

std::string contentsOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// The names, METHOD/WITH/TWIN, of the rows of a Markdown table, its head left out.
std::vector<std::string> rowNames(const std::string& markdown) {
  std::vector<std::string> names;
  for (const std::string& line : linesOf(markdown)) {
    if (!line.starts_with("| ") || line.starts_with("| Method ") || line.starts_with("| ---")) {
      continue;
    }
    std::istringstream cells(line.substr(1));
    std::string name;
    for (std::string cell; std::count(name.begin(), name.end(), '/') < 3 && std::getline(cells, cell, '|');) {
      name += cell.substr(1, cell.find_last_not_of(' ')) + "/";
    }
    names.push_back(name);
  }
  return names;
}

TEST(BenchRun, ReportsEveryMethodWithItsTwin) {
  const support::TemporaryFolder folder;
  const std::string table =
      runSuccessfully({OSTREVIN_BENCH, "--quick", "--benchmark_out=" + folder.path("results.json")}, {}, {}, kLimit);
  const std::vector<std::string> lines = linesOf(table);
  const json rows = json::parse(contentsOf(folder.path("results.json"))).at("benchmarks");
  ASSERT_THAT(lines, SizeIs(rows.size() + 2));
  std::set<std::string> methods;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const json& row = rows[i];
    const std::string name = row.at("name");
    methods.insert(name.substr(0, name.find('/')));
    EXPECT_GT(row.at("real_time"), 0) << name;
    EXPECT_GT(row.at("twin_ns"), 0) << name;
    if (row.at("floor_ns") == 0) {
      EXPECT_GT(row.at("ratio"), 0) << name;
    }
    const bool is_over = row.at("bar") > 0 && row.at("ratio") > row.at("bar");
    EXPECT_EQ(lines[i + 2].find(" over |") != std::string::npos, is_over) << name;
  }
  EXPECT_THAT(methods, IsSupersetOf({"GetIndex", "GetRect", "GetCGRect", "GetScale", "DisplayIDForWindow", "GetName",
                                     "GetProfilePath", "SetProfile", "ListProfilesForDisplay", "first listing",
                                     "listing again", "ICCTagExists", "QV02Read", "UTF-8 to UTF-16", "ostrevin-host",
                                     "dlopen and REALPluginMain"}));
}

TEST(BenchRun, FailsWithStrictForARowOverItsBar) {
  const std::vector<std::string> command{OSTREVIN_BENCH, "--quick", "--benchmark_filter=GetName/3 live.*ready key"};
  EXPECT_THAT(runSuccessfully(command), HasSubstr("1.50 over |"));
  EXPECT_EQ(support::run({command[0], command[1], command[2], "--strict"}).exit_status, 1);
}

TEST(BenchRun, FailsForAnUnknownOption) { EXPECT_EQ(support::run({OSTREVIN_BENCH, "--unknown"}).exit_status, 1); }

TEST(BenchRun, FailsForARowThatCannotBeMeasured) {
  const auto result = support::run({OSTREVIN_BENCH, "--quick", "--benchmark_filter=ICCTagExists"}, {"TMPDIR=/nowhere"});
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_THAT(result.errors, HasSubstr("ICCTagExists/10 tags/lcms2: open, look for the tag, close: "));
}

TEST(BenchRun, FailsForAFilterThatMatchesNoRow) {
  EXPECT_EQ(support::run({OSTREVIN_BENCH, "--benchmark_filter=GetNothing"}).exit_status, 1);
}

TEST(BenchRun, RenewsTheRowsThatADocumentHasAndDrawsThePlotBesideIt) {
  const support::TemporaryFolder folder;
  const std::string document = folder.write("a.md",
                                            "before\n"
                                            "| Method | With | Twin | Plugin | Twin's | Ratio | Bar |\n"
                                            "| --- | --- | --- | --: | --: | --: | --- |\n"
                                            "| GetScale | 3 scripted displays | the same framework calls | old |\n"
                                            "behind\n");
  runSuccessfully({OSTREVIN_BENCH_RUN, "--doc", document, "--quick", "--benchmark_filter=scripted|files|10 devices"},
                  {"OSTREVIN_BENCH=" OSTREVIN_BENCH}, {}, kLimit);
  const std::vector<std::string> lines = linesOf(contentsOf(document));
  ASSERT_THAT(lines, SizeIs(5));
  EXPECT_EQ(lines[0], "before");
  EXPECT_THAT(lines[3], StartsWith("| GetScale | 3 scripted displays | the same framework calls | "));
  EXPECT_THAT(lines[3], Not(HasSubstr("old")));
  EXPECT_EQ(lines[4], "behind");
  const std::string plot = contentsOf(folder.path("a.svg"));
  for (const char* const label : {"GetIndex", "GetName", "first listing", "GetProfilePath"}) {
    EXPECT_THAT(plot, HasSubstr(std::string(label) + "</tspan></text>")) << label;
  }
}

TEST(BenchRun, LeavesADocumentWithARowThatWasNotMeasuredAsItWas) {
  const support::TemporaryFolder folder;
  const std::string document = folder.write("a.md", "| GetScale | no displays | nothing | old |\n");
  const auto result =
      support::run({OSTREVIN_BENCH_RUN, "--doc", document, "--quick", "--benchmark_filter=GetScale/3 scripted"},
                   {"OSTREVIN_BENCH=" OSTREVIN_BENCH});
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_THAT(result.errors, HasSubstr("not measured: GetScale/no displays/nothing"));
  EXPECT_THAT(contentsOf(document), EndsWith("| old |\n"));
}

TEST(BenchRun, CountsInstructionsUnderCallgrind) {
  const std::string table =
      runSuccessfully({OSTREVIN_BENCH_RUN, "--count", "--benchmark_filter=(GetScale|GetRect)/3 scripted"},
                      {"OSTREVIN_BENCH=" OSTREVIN_BENCH}, {}, kLimit);
  EXPECT_THAT(rowNames(table), testing::ElementsAre("GetRect/3 scripted displays/the same framework calls/",
                                                    "GetScale/3 scripted displays/the same framework calls/"));
  EXPECT_THAT(linesOf(table),
              Each(testing::ContainsRegex("[|] [1-9][0-9]+ [|] [1-9][0-9]+ [|] -?[0-9]+ [|]$|---|Twin")));
}

TEST(PerformanceDocument, HasOnlyRowsThatAreMeasured) {
  const std::vector<std::string> measured = linesOf(runSuccessfully({OSTREVIN_BENCH, "--benchmark_list_tests"}));
  const std::vector<std::string> documented = rowNames(contentsOf(OSTREVIN_PERFORMANCE_DOCUMENT));
  EXPECT_THAT(documented, Not(testing::IsEmpty()));
  for (const std::string& name : documented) {
    EXPECT_THAT(measured, Contains(StartsWith(name)));
  }
}

/// The libraries that a library names as needed, but for the loader, which is always there.
std::set<std::string> neededBy(const std::string& library) {
  std::istringstream lines(runSuccessfully({"readelf", "--dynamic", "--wide", library}));
  std::set<std::string> needed;
  for (std::string line; std::getline(lines, line);) {
    if (line.find("(NEEDED)") != std::string::npos && line.find("[ld-linux") == std::string::npos) {
      needed.insert(line.substr(line.find('[')));
    }
  }
  return needed;
}

TEST(EmptyLibrary, NeedsWhatThePluginNeeds) {
  EXPECT_THAT(neededBy(OSTREVIN_LIBRARY), Contains(HasSubstr("libOstrevinPlatform")));
  EXPECT_EQ(neededBy(OSTREVIN_EMPTY_LIBRARY), neededBy(OSTREVIN_LIBRARY));
}

}  // namespace
