// The whole benchmark command, in its quick form. Its times mean nothing there, and none is looked at.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace {

using nlohmann::json;
using test_support::run;
using test_support::runSuccessfully;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::StartsWith;

/// Takes seconds on an idle computer.
constexpr std::chrono::minutes kLimit(5);

TEST(BenchRun, GivesAWellFormedDocument) {
  const json document = json::parse(runSuccessfully({OSTREVIN_BENCH, "--quick", "--json"}, {}, {}, kLimit));
  std::set<std::string> methods;
  for (const json& row : document.at("rows")) {
    const std::string method = row.at("method");
    methods.insert(method);
    EXPECT_FALSE(row.at("twin").get<std::string>().empty()) << method;
    EXPECT_GT(row.at("n"), 0) << method;
    EXPECT_GT(row.at("plugin_ns"), 0) << method;
    EXPECT_GT(row.at("twin_ns"), 0) << method;
    EXPECT_GT(row.at("ratio"), 0) << method;
    EXPECT_EQ(row.at("over"), !row.at("bar").is_null() && row.at("ratio") > row.at("bar")) << method;
  }
  EXPECT_THAT(methods, IsSupersetOf({"GetIndex", "GetRect", "GetCGRect", "GetScale", "DisplayIDForWindow", "GetName",
                                     "GetProfilePath", "SetProfile", "ListProfilesForDisplay", "first listing",
                                     "listing again", "ICCTagExists", "QV02Read", "UTF-8 to UTF-16",
                                     "ostrevin-host profiles", "dlopen and REALPluginMain"}));
  EXPECT_THAT(document.at("instructions"), testing::SizeIs(testing::Gt(20)));
  for (const json& row : document.at("instructions")) {
    EXPECT_GT(row.at("plugin"), 0) << row;
    EXPECT_GT(row.at("twin"), 0) << row;
  }
  EXPECT_THAT(document.at("start"), testing::SizeIs(11));
  EXPECT_THAT(document.at("machine"), Contains(StartsWith("Processor: ")));
}

TEST(BenchRun, PutsTablesIntoADocumentAndAPlotBesideIt) {
  const support::TemporaryFolder folder;
  const std::string document = folder.write("a.md", "<!-- measured -->\n<!-- end -->\n");
  const std::string printed = runSuccessfully({OSTREVIN_BENCH, "--quick", "--doc", document}, {}, {}, kLimit);
  EXPECT_THAT(printed, HasSubstr("\nMethod "));
  EXPECT_THAT(printed, HasSubstr("\nGetIndex "));
  std::ostringstream written;
  written << std::ifstream(document).rdbuf();
  EXPECT_THAT(written.str(), HasSubstr("| Method | Twin | N | Plugin | Twin's | Ratio | Bar |"));
  std::ostringstream plot;
  plot << std::ifstream(folder.path("a.svg")).rdbuf();
  EXPECT_THAT(plot.str(), StartsWith("<svg "));
}

TEST(BenchRun, RefusesAnUnknownOption) { EXPECT_NE(run({OSTREVIN_BENCH, "--unknown"}).exit_status, 0); }

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
