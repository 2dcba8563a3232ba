// Each of the checks, on an image that has one thing wrong.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tools/macho/checks.h"
#include "tools/macho/synthetic_image.h"

namespace {

using macho::Image;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kOldestMacos = 0x24;
constexpr std::uint32_t kBuildVersion = 0x32;
constexpr std::uint32_t kIdentity = 0xD;
constexpr std::uint32_t kVersion = 0x50400;

FileBytes frameworkCommand(const std::string& name) {
  return libraryCommand("/System/Library/Frameworks/" + name + ".framework/Versions/A/" + name);
}

constexpr std::uint32_t kFramePointer = 0x01000000;
constexpr std::uint32_t kDwarf = 0x04000000;
constexpr std::uint32_t kDwarfForArm64 = 0x03000000;

/// Three functions of 16 bytes each, the last two of them with frame descriptions.
void addFunctions(SyntheticImage& synthetic, std::uint32_t dwarf, std::vector<FrameSection::Function> described) {
  synthetic.sections.clear();
  const auto begin = static_cast<std::uint32_t>(synthetic.addSection("__text", FileBytes(48)));
  synthetic.symbols = {{"_one", begin}, {"_two", begin + 16}, {"_three", begin + 32}};
  const UnwindTable table{.lines = {{begin, kFramePointer}, {begin + 16, dwarf}}, .end = begin + 48};
  synthetic.addSection("__unwind_info", table.build());
  for (FrameSection::Function& function : described) {
    function.begin += begin;
  }
  const FrameSection frames{.address = synthetic.nextSection(), .functions = described};
  synthetic.addSection("__eh_frame", frames.build());
}

/// A library of which nothing is wrong.
SyntheticImage library() {
  SyntheticImage synthetic;
  synthetic.data = {0};
  synthetic.commands = {loadCommand(kBuildVersion, {1, 0xB0000, 0xC0000, 0}),
                        libraryCommand("@rpath/Ostrevin.dylib", kIdentity, kVersion, kVersion),
                        frameworkCommand("AppKit"),
                        frameworkCommand("ColorSync"),
                        frameworkCommand("CoreFoundation"),
                        frameworkCommand("CoreGraphics"),
                        frameworkCommand("Foundation"),
                        frameworkCommand("IOKit"),
                        libraryCommand("/usr/lib/libSystem.B.dylib"),
                        libraryCommand("/usr/lib/libobjc.A.dylib")};
  synthetic.imports = {{"___stack_chk_fail"}};
  synthetic.exports = {"_REALPluginMain", "_listOfSomething"};
  addFunctions(synthetic, kDwarfForArm64, {{16, 16}, {32, 16}});
  return synthetic;
}

std::vector<std::string> problemsWith(const SyntheticImage& synthetic) {
  const FileBytes file = synthetic.build();
  const Image image(file);
  std::vector<std::string> problems;
  for (const auto& checks : {macho::checkFile(image), macho::checkLibrary(image, {"REALPluginMain", "list*"})}) {
    for (const macho::Check& check : checks) {
      problems.insert(problems.end(), check.problems.begin(), check.problems.end());
    }
  }
  return problems;
}

TEST(FileCheck, FindsNothingWrongWithExpectedLibrary) {
  EXPECT_THAT(problemsWith(library()), IsEmpty());
  SyntheticImage with_cxx = library();
  with_cxx.commands.push_back(libraryCommand("/usr/lib/libc++.1.dylib"));
  EXPECT_THAT(problemsWith(with_cxx), IsEmpty());
  SyntheticImage intel = library();
  intel.cpu = kX86_64;
  intel.commands[0] = loadCommand(kOldestMacos, {0xA0D00, 0xC0000});
  intel.imports.push_back({"__availability_version_check", true});
  addFunctions(intel, kDwarf, {{16, 16}, {32, 16}});
  EXPECT_THAT(problemsWith(intel), IsEmpty());
}

struct Fault {
  const char* name;
  std::function<void(SyntheticImage&)> plant;
  const char* problem;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class FileCheckFault : public testing::TestWithParam<Fault> {};

TEST_P(FileCheckFault, IsReported) {
  SyntheticImage synthetic = library();
  GetParam().plant(synthetic);
  EXPECT_THAT(problemsWith(synthetic), ElementsAre(GetParam().problem));
}

const Fault kFaults[] = {
    {"NoOldestSystem", [](auto& image) { image.commands.erase(image.commands.begin()); }, "names no oldest system"},
    {"OtherSystem",
     [](auto& image) {
       image.commands[0] = loadCommand(kBuildVersion, {2, 0xB0000, 0xC0000, 0});
     },
     "is for another system than macOS"},
    {"LaterSystem",
     [](auto& image) {
       image.commands[0] = loadCommand(kBuildVersion, {1, 0xB0100, 0xC0000, 0});
     },
     "is for macOS 11.1.0 and later"},
    {"LaterSystemForIntel",
     [](auto& image) {
       image.cpu = kX86_64;
       image.commands[0] = loadCommand(kOldestMacos, {0xA0E00, 0xC0000});
     },
     "is for macOS 10.14.0 and later"},
    {"NeedsCallOfLaterSystem",
     [](auto& image) {
       image.cpu = kX86_64;
       image.commands[0] = loadCommand(kOldestMacos, {0xA0D00, 0xC0000});
       image.imports.push_back({"__availability_version_check"});
     },
     "needs _availability_version_check"},
    {"WritableCode", [](auto& image) { image.data_protection = 7; }, "the segment __DATA is writable and executable"},
    {"CodeThatMayBecomeWritable", [](auto& image) { image.data_most_protection = 7; },
     "the segment __DATA is writable and executable"},
    {"ExecutableStack", [](auto& image) { image.flags = 0x20000; }, "the stack is executable"},
    {"ProgramAtFixedAddress", [](auto& image) { image.file_type = 2; }, "the program is loaded at a fixed address"},
    {"NoStackProtector", [](auto& image) { image.imports.clear(); }, "was compiled without the stack protector"},
    {"NoUnwindTable", [](auto& image) { image.sections.clear(); }, "has no unwind table"},
    {"FunctionWithoutFrameDescription",
     [](auto& image) {
       addFunctions(image, kDwarfForArm64, {{16, 16}});
     },
     "no frame description begins at the function _three"},
    {"FrameDescriptionInsideFunction",
     [](auto& image) {
       addFunctions(image, kDwarfForArm64, {{16, 16}, {32, 16}, {4, 8}});
     },
     "a frame description begins outside the functions, at 0x1004"},
    {"TruncatedUnwindTable", [](auto& image) { image.sections[1].contents.resize(40); },
     "the unwind table lies outside the file"},
    {"NoInstallName", [](auto& image) { image.commands.erase(image.commands.begin() + 1); }, "has no install name"},
    {"OtherInstallName",
     [](auto& image) { image.commands[1] = libraryCommand("Ostrevin.dylib", kIdentity, kVersion, kVersion); },
     "is Ostrevin.dylib, version 5.4.0, compatibility version 5.4.0"},
    {"OtherVersion",
     [](auto& image) { image.commands[1] = libraryCommand("@rpath/Ostrevin.dylib", kIdentity, 0x50401, kVersion); },
     "is @rpath/Ostrevin.dylib, version 5.4.1, compatibility version 5.4.0"},
    {"MissingLibrary", [](auto& image) { image.commands.pop_back(); }, "does not link /usr/lib/libobjc.A.dylib"},
    {"FurtherLibrary", [](auto& image) { image.commands.push_back(libraryCommand("/usr/lib/libz.1.dylib")); },
     "also links /usr/lib/libz.1.dylib"},
    {"FurtherWeakLibrary",
     [](auto& image) { image.commands.push_back(libraryCommand("/usr/lib/libz.1.dylib", 0x80000018)); },
     "also links /usr/lib/libz.1.dylib"},
    {"MissingExport", [](auto& image) { image.exports = {"_REALPluginMain"}; }, "does not export list*"},
    {"FurtherExport", [](auto& image) { image.exports.emplace_back("_inner"); }, "also exports _inner"},
    {"AutomaticReferenceCounting", [](auto& image) { image.imports.push_back({"_objc_storeStrong"}); },
     "was compiled with automatic reference counting: imports _objc_storeStrong"},
};

INSTANTIATE_TEST_SUITE_P(, FileCheckFault, testing::ValuesIn(kFaults),
                         [](const auto& info) { return info.param.name; });

}  // namespace
