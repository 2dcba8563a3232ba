// What the built library exports, by nm and ldd, compared with the list in the tree.
#include <gmock/gmock.h>

#include <fnmatch.h>
#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"

namespace {

using support::runSuccessfully;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> exportedSymbols() {
  std::istringstream lines(runSuccessfully({"nm", "-D", "--defined-only", "--format=posix", OSTREVIN_LIBRARY}));
  std::vector<std::string> symbols;
  std::string line;
  while (std::getline(lines, line)) {
    symbols.push_back(line.substr(0, line.find(' ')));
  }
  return symbols;
}

std::vector<std::string> listedPatterns() {
  std::ifstream file(OSTREVIN_EXPORT_LIST);
  std::vector<std::string> patterns;
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty() && line.front() != '#') {
      patterns.push_back(line);
    }
  }
  return patterns;
}

bool matches(const std::string& pattern, const std::string& symbol) {
  return fnmatch(pattern.c_str(), symbol.c_str(), 0) == 0;
}

TEST(Exports, EveryExportedSymbolIsListed) {
  const auto patterns = listedPatterns();
  const auto symbols = exportedSymbols();
  ASSERT_THAT(symbols, Not(IsEmpty()));
  for (const std::string& symbol : symbols) {
    EXPECT_EQ(std::count_if(patterns.begin(), patterns.end(),
                            [&](const std::string& pattern) { return matches(pattern, symbol); }),
              1)
        << symbol;
  }
}

TEST(Exports, EveryListedSymbolIsExportedOnce) {
  const auto symbols = exportedSymbols();
  for (const std::string& pattern : listedPatterns()) {
    EXPECT_EQ(std::count_if(symbols.begin(), symbols.end(),
                            [&](const std::string& symbol) { return matches(pattern, symbol); }),
              1)
        << pattern;
  }
}

TEST(Exports, ListHasOnlyTheEntryVersionsAndNamespaces) {
  const std::vector<std::string> allowed = {
      "REALPluginMain",        "OstrevinVersionNumber", "OstrevinVersionString", "_ZN7Display*",
      "_ZN15DisplayServices*", "_ZN15ProfileServices*", "_ZN14StringServices*",  "_ZN5Utils*"};
  for (const std::string& symbol : exportedSymbols()) {
    EXPECT_TRUE(std::any_of(allowed.begin(), allowed.end(), [&](const std::string& pattern) {
      return matches(pattern, symbol);
    })) << symbol;
  }
}

// What is not exported is internal: a function of an unnamed namespace, or of one that is named so.
TEST(Exports, ServicesHaveNoOtherNamedFunctions) {
  const auto patterns = listedPatterns();
  const std::vector<std::string> others = {"*_GLOBAL__N_*", "_ZN15DisplayServices8internal*", "_ZN5Utils*flip_*"};
  std::istringstream lines(runSuccessfully({"nm", "--defined-only", "--format=posix", OSTREVIN_LIBRARY}));
  int count = 0;
  for (std::string symbol, type, rest; lines >> symbol >> type && std::getline(lines, rest);) {
    const bool is_function = type == "t" || type == "T" || type == "W";
    const bool is_of_a_service = matches("_ZN15DisplayServices*", symbol) || matches("_ZN15ProfileServices*", symbol) ||
                                 matches("_ZN14StringServices*", symbol) || matches("_ZN5Utils*", symbol) ||
                                 matches("_ZN7Display*", symbol);
    if (!is_function || !is_of_a_service) {
      continue;
    }
    ++count;
    const auto is_of = [&](const std::string& pattern) { return matches(pattern, symbol); };
    EXPECT_TRUE(std::any_of(patterns.begin(), patterns.end(), is_of) ||
                std::any_of(others.begin(), others.end(), is_of))
        << symbol;
  }
  EXPECT_GT(count, 50);
}

#ifndef OSTREVIN_SANITIZED  // a sanitizer's functions are in the program only
TEST(Exports, EveryUndefinedSymbolHasALibrary) {
  const support::ProcessResult run = support::run({"ldd", "-r", OSTREVIN_LIBRARY});
  const std::string report = run.output + run.errors;
  EXPECT_THAT(report, testing::HasSubstr("libOstrevinPlatform.so"));
  EXPECT_THAT(report, Not(testing::HasSubstr("undefined symbol")));
  EXPECT_THAT(report, Not(testing::HasSubstr("not found")));
}
#endif

TEST(LoadedModule, IsInitialisedDataNeverWritten) {
  // nm prints "d" for initialised data, and "b" for records that code fills in at load.
  const std::string symbols = runSuccessfully({"nm", OSTREVIN_LIBRARY});
  EXPECT_THAT(symbols, HasSubstr(" d DisplayModuleDefinition\n"));
  EXPECT_THAT(symbols, HasSubstr(" d DisplayModuleMethods\n"));
}

}  // namespace
