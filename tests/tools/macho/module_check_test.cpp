#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/macho/checks.h"
#include "tools/macho/synthetic_image.h"

namespace {

using macho::Image;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint64_t kData = SyntheticImage::kDataAddress;
constexpr std::size_t kModuleWords = 24;
constexpr std::size_t kMethodWords = 6;

/// A library as the host expects it: 15 functions, their declarations, the table and the record.
SyntheticImage library(Fixups fixups = Fixups::opcodes) {
  struct Row {
    const char* declaration;
    const char* symbol;
  };
  const Row rows[] = {
      {"SetObject( obj As Object )", "__ZN12_GLOBAL__N_1L21RBA_OstrevinSetObjectEP16REALobjectStruct"},
      {"ListAllInstalledProfiles()", "__ZL27RB_ListAllInstalledProfilesv"},
      {"ListDisplayProfiles(displayID As UInt32)", "_RB_ListDisplayProfiles"},
      {"GetName(displayID As UInt32, byref name As String)", "__Z10RB_GetNamejPP16REALstringStruct"},
      {"GetRect(displayID As UInt32, byref left As Integer, byref top As Integer, byref right As Integer, byref bottom "
       "As Integer)",
       "_RB_GetRect"},
      {"GetCGRect(displayID As UInt32, byref x As Double, byref y As Double, byref width As Double, byref height As "
       "Double)",
       "_RB_GetCGRect"},
      {"GetProfilePath(displayID As UInt32, byref path As String)", "_RB_GetProfilePath"},
      {"GetIndex(displayID As UInt32) As UInt32", "_RB_GetIndex"},
      {"GetScale(displayID As UInt32) As Double", "_RB_GetScale"},
      {"SetProfile(displayID As UInt32, path As String) As Boolean", "_RB_SetProfile"},
      {"DisplayIDForWindow(left as Integer, top as Integer, width as Integer, height as Integer) As UInt32",
       "_RB_DisplayIDForWindow"},
      {"GetInstalledProfilePathsArray() As String()", "_RB_GetInstalledProfilePathsArray"},
      {"GetAssociatedProfilePathsArray(displayID As UInt32) As String()", "_RB_GetAssociatedProfilePathsArray"},
      {"ICCTagExists(path As String, tag As String) As Boolean", "_RB_ICCTagExists"},
      {"QV02Read(path As String, byref xmlString As String) As Integer", "_RB_QV02Read"},
  };
  SyntheticImage synthetic;
  synthetic.fixups = fixups;
  synthetic.data.resize(kModuleWords);
  synthetic.data[0] = 13;
  synthetic.data[1] = synthetic.addText("Ostrevin");
  synthetic.data[2] = kData + kModuleWords * 8;
  synthetic.data[3] = std::size(rows);
  synthetic.pointers = {1, 2};
  synthetic.symbols = {{"_DisplayModuleDefinition", kData}, {"_DisplayModuleMethods", kData + kModuleWords * 8}};
  for (const Row& row : rows) {
    const std::size_t first = synthetic.data.size();
    synthetic.data.resize(first + kMethodWords);
    synthetic.data[first] = synthetic.addText("code");
    synthetic.symbols.push_back({row.symbol, synthetic.data[first]});
    synthetic.data[first + 2] = synthetic.addText(row.declaration);
    synthetic.pointers.push_back(first);
    synthetic.pointers.push_back(first + 2);
  }
  return synthetic;
}

std::vector<std::string> problemsWith(const SyntheticImage& synthetic) {
  const FileBytes file = synthetic.build();
  return macho::checkModule(Image(file)).problems;
}

TEST(ModuleCheck, FindsNothingWrongWithExpectedLibrary) {
  EXPECT_THAT(problemsWith(library(Fixups::opcodes)), IsEmpty());
  EXPECT_THAT(problemsWith(library(Fixups::chains)), IsEmpty());
}

TEST(ModuleCheck, ReportsEveryChangedWord) {
  const SyntheticImage good = library();
  for (std::size_t word = 0; word < good.data.size(); ++word) {
    SyntheticImage bad = good;
    // Some other place of the image for a pointer, some other number for a number.
    bad.data[word] = bad.data[word] >= SyntheticImage::kTextAddress ? good.data[1] + 1 : bad.data[word] + 1;
    EXPECT_EQ(problemsWith(bad).size(), 1U) << "word " << word;
  }
}

TEST(ModuleCheck, ReportsEveryPointerThatTheLoaderDoesNotAdjust) {
  const SyntheticImage good = library();
  for (std::size_t index = 0; index < good.pointers.size(); ++index) {
    SyntheticImage bad = good;
    bad.pointers.erase(bad.pointers.begin() + static_cast<std::ptrdiff_t>(index));
    EXPECT_EQ(problemsWith(bad).size(), 1U) << "pointer " << index;
  }
}

TEST(ModuleCheck, ReportsExchangedMethods) {
  SyntheticImage bad = library();
  const std::size_t row = kModuleWords + 3 * kMethodWords;
  std::swap(bad.data[row], bad.data[row + kMethodWords]);
  EXPECT_THAT(problemsWith(bad), testing::ElementsAre(HasSubstr("RB_GetName"), HasSubstr("RB_GetRect")));
}

TEST(ModuleCheck, ReportsRecordsInReadOnlyMemory) {
  SyntheticImage bad = library();
  bad.data_segment_flags = 0x10;
  EXPECT_THAT(problemsWith(bad),
              testing::ElementsAre("DisplayModuleDefinition is not writable", "DisplayModuleMethods is not writable"));
}

TEST(ModuleCheck, ReportsMissingAndDuplicateRecords) {
  SyntheticImage missing = library();
  missing.symbols.erase(missing.symbols.begin());
  EXPECT_THAT(problemsWith(missing), Contains(HasSubstr("0 symbols are named DisplayModuleDefinition")));
  SyntheticImage twice = library();
  twice.symbols.push_back({"_DisplayModuleMethods", kData});
  EXPECT_THAT(problemsWith(twice), Contains(HasSubstr("2 symbols are named DisplayModuleMethods")));
}

TEST(ModuleCheck, ReportsTruncatedTable) {
  SyntheticImage bad = library();
  bad.data.pop_back();
  EXPECT_THAT(problemsWith(bad), Contains(HasSubstr("outside the file")));
}

TEST(PlainName, LacksNamespacesAndParameters) {
  EXPECT_EQ(macho::plainName("_REALPluginMain"), "REALPluginMain");
  EXPECT_EQ(macho::plainName("__ZN12_GLOBAL__N_110RB_GetNameEjPP16REALstringStruct"), "RB_GetName");
  EXPECT_EQ(macho::plainName("__ZN7Display8GetScaleEj"), "GetScale");
  EXPECT_EQ(macho::plainName(""), "");
}

}  // namespace
