#include "tools/macho/unwind.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/macho/synthetic_image.h"

namespace {

using macho::FrameDescription;
using macho::Image;
using macho::MachoError;
using macho::UnwindEntry;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kBegin = SyntheticImage::kTextAddress;
constexpr std::uint32_t kData = SyntheticImage::kDataAddress;

UnwindTable threeFunctions(UnwindPage page) {
  return {.lines = {{kBegin, 0x01000000}, {kBegin + 16, 0x52000001}, {kBegin + 48, 0x04000000}},
          .end = kBegin + 64,
          .page = page,
          .shared_encodings = {0x52000001},
          .personalities = {kData},
          .data = {{kBegin + 16, kData + 8}}};
}

FileBytes withTable(const FileBytes& table) {
  SyntheticImage synthetic;
  synthetic.addSection("__text", FileBytes(64));
  synthetic.addSection("__unwind_info", table);
  return synthetic.build();
}

class UnwindTablePage : public testing::TestWithParam<UnwindPage> {};

TEST_P(UnwindTablePage, ListsFunctionsWithEncodingsPersonalitiesAndData) {
  const FileBytes file = withTable(threeFunctions(GetParam()).build());
  const std::vector<UnwindEntry> entries = macho::unwindEntries(Image(file));
  ASSERT_EQ(entries.size(), 3U);
  EXPECT_EQ(entries[0].begin, kBegin);
  EXPECT_EQ(entries[0].end, kBegin + 16);
  EXPECT_EQ(entries[0].encoding, 0x01000000U);
  EXPECT_EQ(entries[0].personality, 0U);
  EXPECT_EQ(entries[0].data, 0U);
  EXPECT_EQ(entries[1].end, kBegin + 48);
  EXPECT_EQ(entries[1].encoding, 0x52000001U);
  EXPECT_EQ(entries[1].personality, kData);
  EXPECT_EQ(entries[1].data, kData + 8);
  EXPECT_EQ(entries[2].encoding, 0x04000000U);
  EXPECT_EQ(entries[2].end, kBegin + 64);
}

TEST_P(UnwindTablePage, RefusesTruncationAndReadsOrRefusesEveryChangedByte) {
  const FileBytes table = threeFunctions(GetParam()).build();
  for (std::size_t size = 1; size < table.size(); ++size) {
    const FileBytes file = withTable({table.begin(), table.begin() + static_cast<std::ptrdiff_t>(size)});
    EXPECT_THROW(macho::unwindEntries(Image(file)), MachoError) << size;
  }
  for (std::size_t at = 0; at < table.size(); ++at) {
    FileBytes hostile = table;
    hostile[at] ^= 0xFF;
    const FileBytes file = withTable(hostile);
    try {
      EXPECT_LE(macho::unwindEntries(Image(file)).size(), table.size() / 4) << at;
    } catch (const MachoError&) {
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, UnwindTablePage, testing::Values(UnwindPage::regular, UnwindPage::compressed),
                         [](const auto& info) { return testing::PrintToString(info.param); });

TEST(UnwindTable, IsEmptyWithoutSection) {
  const FileBytes file = SyntheticImage().build();
  EXPECT_THAT(macho::unwindEntries(Image(file)), IsEmpty());
  EXPECT_THAT(macho::frameDescriptions(Image(file)), IsEmpty());
}

TEST(UnwindTable, RefusesDisorderMissingDataAndMissingPersonality) {
  UnwindTable disorder = threeFunctions(UnwindPage::regular);
  std::swap(disorder.lines[0], disorder.lines[2]);
  UnwindTable no_data = threeFunctions(UnwindPage::regular);
  no_data.data.clear();
  UnwindTable no_personality = threeFunctions(UnwindPage::regular);
  no_personality.personalities.clear();
  for (const UnwindTable& table : {disorder, no_data, no_personality}) {
    const FileBytes file = withTable(table.build());
    EXPECT_THROW(macho::unwindEntries(Image(file)), MachoError);
  }
}

TEST(UnwindEntry, UsesFrameDescriptionByTheModeOfItsArchitecture) {
  SyntheticImage synthetic;
  const FileBytes arm = synthetic.build();
  synthetic.cpu = kX86_64;
  const FileBytes intel = synthetic.build();
  const auto uses = [](const FileBytes& file, std::uint32_t encoding) {
    return macho::usesFrameDescription(Image(file), {0, 0, encoding, 0, 0});
  };
  EXPECT_TRUE(uses(arm, 0x53000010));
  EXPECT_FALSE(uses(arm, 0x04000000));
  EXPECT_TRUE(uses(intel, 0x54000010));
  EXPECT_FALSE(uses(intel, 0x03000000));
}

FileBytes withFrames(std::uint64_t personality, bool is_truncated = false) {
  SyntheticImage synthetic;
  synthetic.addSection("__text", FileBytes(64));
  const FrameSection frames{.address = synthetic.nextSection(),
                            .personality = personality,
                            .functions = {{kBegin, 16, kData + 16}, {kBegin + 32, 8}}};
  FileBytes contents = frames.build();
  if (is_truncated) {
    contents.pop_back();
  }
  synthetic.addSection("__eh_frame", contents);
  return synthetic.build();
}

TEST(FrameDescriptions, ListFunctionsWithCommonRules) {
  const FileBytes file = withFrames(0);
  const std::vector<FrameDescription> descriptions = macho::frameDescriptions(Image(file));
  ASSERT_EQ(descriptions.size(), 2U);
  EXPECT_EQ(descriptions[0].begin, kBegin);
  EXPECT_EQ(descriptions[0].size, 16U);
  EXPECT_EQ(descriptions[0].data, 0U);
  EXPECT_EQ(descriptions[1].begin, kBegin + 32);
  EXPECT_EQ(descriptions[1].size, 8U);
  EXPECT_GT(descriptions[1].offset, descriptions[0].offset);
  EXPECT_THAT(descriptions[0].rules.alignments, ElementsAre(1, 0x78, 16));
  EXPECT_EQ(descriptions[0].rules.personality, 0U);
  EXPECT_FALSE(descriptions[0].rules.has_data);
  EXPECT_EQ(descriptions[0].rules.instructions[0], 0x0C);
  EXPECT_EQ(descriptions[0].instructions[0], 0x0E);
}

TEST(FrameDescriptions, HavePersonalityAndData) {
  const FileBytes file = withFrames(kData);
  const std::vector<FrameDescription> descriptions = macho::frameDescriptions(Image(file));
  ASSERT_EQ(descriptions.size(), 2U);
  EXPECT_EQ(descriptions[0].rules.personality, kData);
  EXPECT_EQ(descriptions[0].data, kData + 16);
  EXPECT_EQ(descriptions[1].data, 0U);
}

TEST(FrameDescriptions, RefuseTruncation) {
  const FileBytes file = withFrames(kData, true);
  EXPECT_THROW(macho::frameDescriptions(Image(file)), MachoError);
}

}  // namespace
