// What the benchmark command makes of its results.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "bench/groups.h"
#include "bench/report.h"
#include "support/temporary_folder.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

bench::Row row(double ratio, double bar) {
  return {"Group", "GetSomething", "direct calls", 3, 1000 * ratio, 1000, ratio, bar};
}

std::string table(const bench::Results& results) {
  std::ostringstream out;
  bench::printTable(out, results);
  return out.str();
}

std::string lineWith(const std::string& text, const std::string& part) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.find(part) != std::string::npos) {
      return line;
    }
  }
  return {};
}

std::string contentsOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

TEST(BenchTable, MarksARowOverItsBar) {
  EXPECT_THAT(lineWith(table({.rows = {row(1.16, 1.15)}}), "GetSomething"), EndsWith("1.15  over"));
}

TEST(BenchTable, DoesNotMarkARowAtItsBarOrWithoutOne) {
  EXPECT_THAT(lineWith(table({.rows = {row(1.15, 1.15)}}), "GetSomething"), Not(HasSubstr("over")));
  EXPECT_THAT(lineWith(table({.rows = {row(99, 0)}}), "GetSomething"), EndsWith("  -"));
}

TEST(BenchTable, CountsWhatFallsShort) {
  EXPECT_EQ(bench::shortfalls({.rows = {row(2, 1), row(1, 1), row(9, 0)}, .instructions = {{"a", "b", 1, 20, 10, 6}}}),
            2);
}

TEST(BenchTable, GivesTimesInTheUnitThatSuits) {
  EXPECT_EQ(bench::timeText(86.44), "86.4 ns");
  EXPECT_EQ(bench::timeText(1871), "1.87 µs");
  EXPECT_EQ(bench::timeText(24.3e6), "24.3 ms");
  EXPECT_EQ(bench::timeText(2.5e9), "2.50 s");
}

TEST(BenchJson, HasNullForNoBar) {
  std::ostringstream out;
  bench::printJson(out, {.rows = {row(2, 0)}});
  const auto document = nlohmann::json::parse(out.str());
  EXPECT_TRUE(document.at("rows").at(0).at("bar").is_null());
  EXPECT_EQ(document.at("rows").at(0).at("plugin_ns"), 2000);
}

TEST(BenchDocument, IsChangedBetweenItsMarksOnly) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("a.md", "before\n<!-- measured -->\nold\n<!-- end -->\nbehind\n");
  bench::replaceMeasured(path, "new\n");
  EXPECT_EQ(contentsOf(path), "before\n<!-- measured -->\n\nnew\n\n<!-- end -->\nbehind\n");
}

TEST(BenchDocument, WithoutMarksIsLeftAsItIs) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("a.md", "text\n");
  EXPECT_THROW(bench::replaceMeasured(path, "new\n"), std::runtime_error);
  EXPECT_EQ(contentsOf(path), "text\n");
}

TEST(BenchPlot, HasALabelledLineForEachMethod) {
  bench::Results results;
  for (const long n : {10L, 100L}) {
    for (const char* const method : {"GetIndex", "GetScale"}) {
      bench::Row growing = row(1, 0);
      growing.group = bench::kDisplayGrowth;
      growing.method = method;
      growing.n = n;
      results.rows.push_back(growing);
    }
    bench::Row list = row(1, 0);
    list.group = bench::kProfileLists;
    list.method = "first listing";
    list.n = n;
    results.rows.push_back(list);
  }
  const std::string svg = bench::plotSvg(results);
  EXPECT_THAT(svg, HasSubstr("GetIndex</text>"));
  EXPECT_THAT(svg, HasSubstr("GetScale</text>"));
  EXPECT_THAT(svg, HasSubstr("first listing</text>"));
  EXPECT_THAT(svg, HasSubstr("prefers-color-scheme: dark"));
  EXPECT_THAT(svg, Not(HasSubstr("nan")));
}

}  // namespace
