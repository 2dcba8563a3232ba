// Two builds of a file, which differ in one thing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/macho/checks.h"
#include "tools/macho/synthetic_image.h"

namespace {

using macho::Image;
using testing::ElementsAre;

/// Three functions of 16 bytes each, and a pointer to a symbol of the second library.
struct Build {
  FileBytes code = FileBytes(48);
  std::string third_name = "_three";
  std::uint8_t library = 2;
  std::uint8_t symbol_flags = 0;

  FileBytes file() const {
    SyntheticImage synthetic;
    synthetic.commands = {libraryCommand("/usr/lib/libSystem.B.dylib"), libraryCommand("/usr/lib/libobjc.A.dylib")};
    synthetic.data = {0};
    const std::uint64_t begin = synthetic.addSection("__text", code);
    synthetic.symbols = {{"_one", begin}, {"_two", begin + 16}, {third_name, begin + 32}};
    // The library, the symbol, a pointer, at offset 0 of segment 1, bind, done.
    synthetic.bind_opcodes = {static_cast<std::uint8_t>(0x10 | library),
                              static_cast<std::uint8_t>(0x40 | symbol_flags),
                              '_',
                              'm',
                              's',
                              'g',
                              0,
                              0x51,
                              0x71,
                              0,
                              0x90,
                              0};
    return synthetic.build();
  }
};

std::vector<std::string> differences(const Build& build, const Build& other) {
  const FileBytes file = build.file();
  const FileBytes other_file = other.file();
  std::vector<std::string> problems;
  for (const macho::Check& check : macho::compareImages(Image(file), Image(other_file))) {
    problems.insert(problems.end(), check.problems.begin(), check.problems.end());
  }
  return problems;
}

TEST(CompareImages, FindsNothingInEqualBuilds) { EXPECT_THAT(differences({}, {}), ElementsAre()); }

TEST(CompareImages, CountsWhatItCompared) {
  const FileBytes file = Build().file();
  const std::vector<macho::Check> checks = macho::compareImages(Image(file), Image(file));
  ASSERT_EQ(checks.size(), 2U);
  EXPECT_EQ(checks[0].subject, "the machine code is the same, 48 bytes");
  EXPECT_EQ(checks[1].subject, "the same 1 symbols are imported from the same libraries");
}

TEST(CompareImages, NamesFunctionWhoseCodeDiffers) {
  Build other;
  other.code[16] = 1;
  EXPECT_THAT(differences({}, other), ElementsAre("the machine code differs: _two, 16 bytes, 16 in the other file"));
}

TEST(CompareImages, NamesFunctionWhoseSizeDiffers) {
  Build other;
  other.code.push_back(0);
  EXPECT_THAT(differences({}, other), ElementsAre("the machine code differs: _three, 16 bytes, 17 in the other file"));
}

TEST(CompareImages, NamesFunctionsThatOneFileLacks) {
  Build other;
  other.third_name = "_four";
  other.code[40] = 1;
  EXPECT_THAT(differences({}, other),
              ElementsAre("only this file has the function _three", "only the other file has the function _four"));
}

TEST(CompareImages, NamesSymbolOfAnotherLibrary) {
  Build other;
  other.library = 1;
  EXPECT_THAT(differences({}, other), ElementsAre("only this file imports _msg from /usr/lib/libobjc.A.dylib",
                                                  "only the other file imports _msg from /usr/lib/libSystem.B.dylib"));
}

TEST(CompareImages, NamesSymbolThatOneFileImportsWeakly) {
  Build other;
  other.symbol_flags = 1;
  EXPECT_THAT(differences({}, other),
              ElementsAre("only this file imports _msg from /usr/lib/libobjc.A.dylib",
                          "only the other file imports _msg from /usr/lib/libobjc.A.dylib, weakly"));
}

}  // namespace
