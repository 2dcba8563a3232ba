// The built files are hardened, by readelf, nm and the compiler's commands.
#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"

namespace {

using support::runSuccessfully;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// One line of the segment table: its kind, and those of "R", "W" and "E" that apply.
struct Segment {
  std::string kind;
  std::string access;
};

std::vector<Segment> segmentsOf(const std::string& file) {
  std::istringstream lines(runSuccessfully({"readelf", "--program-headers", "--wide", file}));
  std::vector<Segment> segments;
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    Segment segment;
    std::string offset;
    if (!(words >> segment.kind >> offset) || !offset.starts_with("0x")) {
      continue;
    }
    for (int column = 0; column < 4; ++column) {  // two addresses, two sizes
      words >> offset;
    }
    std::string flag;
    while (words >> flag && !flag.starts_with("0x")) {
      segment.access += flag;
    }
    segments.push_back(segment);
  }
  return segments;
}

std::vector<std::string> undefinedSymbolsOf(const std::string& file) {
  std::istringstream lines(runSuccessfully({"nm", "--dynamic", "--undefined-only", "--format=just-symbols", file}));
  std::vector<std::string> symbols;
  std::string line;
  while (std::getline(lines, line)) {
    symbols.push_back(line.substr(0, line.find('@')));
  }
  return symbols;
}

class HardenedFile : public testing::TestWithParam<const char*> {};

TEST_P(HardenedFile, HasNoExecutableStack) {
  std::vector<std::string> stacks;
  for (const Segment& segment : segmentsOf(GetParam())) {
    if (segment.kind == "GNU_STACK") {
      stacks.push_back(segment.access);
    }
  }
  EXPECT_THAT(stacks, testing::ElementsAre("RW"));
}

TEST_P(HardenedFile, HasNoWritableExecutableSegment) {
  const auto segments = segmentsOf(GetParam());
  ASSERT_THAT(segments, Not(IsEmpty()));
  for (const Segment& segment : segments) {
    EXPECT_FALSE(segment.access.find('W') != std::string::npos && segment.access.find('E') != std::string::npos)
        << segment.kind;
  }
}

TEST_P(HardenedFile, HasReadOnlyLoaderTables) {
  std::vector<std::string> kinds;
  for (const Segment& segment : segmentsOf(GetParam())) {
    kinds.push_back(segment.kind);
  }
  EXPECT_THAT(kinds, Contains("GNU_RELRO"));
  EXPECT_THAT(runSuccessfully({"readelf", "--dynamic", "--wide", GetParam()}), HasSubstr("BIND_NOW"));
}

TEST_P(HardenedFile, IsPositionIndependent) {
  const std::string header = runSuccessfully({"readelf", "--file-header", "--wide", GetParam()});
  EXPECT_THAT(header, HasSubstr("DYN ("));
}

TEST_P(HardenedFile, ChecksItsStack) { EXPECT_THAT(undefinedSymbolsOf(GetParam()), Contains("__stack_chk_fail")); }

std::string nameOfFile(const testing::TestParamInfo<const char*>& info) {
  static constexpr const char* kNames[] = {"Plugin", "Platform", "X11", "Wayland", "Colord", "Gamut", "Tool"};
  return kNames[info.index];
}

INSTANTIATE_TEST_SUITE_P(Each, HardenedFile,
                         testing::Values(OSTREVIN_LIBRARY, OSTREVIN_PLATFORM_LIBRARY, OSTREVIN_X11_LIBRARY,
                                         OSTREVIN_WAYLAND_LIBRARY, OSTREVIN_COLORD_LIBRARY, OSTREVIN_GAMUT_LIBRARY,
                                         OSTREVIN_HOST),
                         nameOfFile);

#ifndef OSTREVIN_SANITIZED  // sanitizers put their own checks around these functions
// By the commands: whether a library calls a checked function depends on what the compiler can prove.
TEST(HardenedFiles, AreCompiledWithChecksOfCopies) {
  std::size_t hardened = 0;
  for (const nlohmann::json& unit : nlohmann::json::parse(std::ifstream(OSTREVIN_COMPILE_COMMANDS))) {
    const std::string command = unit.at("command");
    const auto is_of = [&](const char* target) { return command.find(target) != std::string::npos; };
    if (is_of("/ostrevin_objects.dir/") || is_of(" platform/CMakeFiles/") || is_of("/ostrevin-host.dir/")) {
      EXPECT_THAT(command, HasSubstr(" -D_FORTIFY_SOURCE=2 "));
      ++hardened;
    }
  }
  EXPECT_GT(hardened, 0U);
}
#endif

}  // namespace
