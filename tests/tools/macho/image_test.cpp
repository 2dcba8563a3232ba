#include "tools/macho/image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/macho/checks.h"
#include "tools/macho/synthetic_image.h"

namespace {

using macho::Image;
using macho::MachoError;
using macho::Pointer;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::uint64_t kData = SyntheticImage::kDataAddress;
/// Where the file's contents begin.
constexpr std::size_t kContents = SyntheticImage::kTextAddress;

/// Three words of data: a number, a pointer to the text "one", a pointer to the text "two".
SyntheticImage twoPointers(Fixups fixups) {
  SyntheticImage synthetic;
  synthetic.fixups = fixups;
  const std::uint64_t one = synthetic.addText("one");
  const std::uint64_t two = synthetic.addText("two");
  synthetic.data = {13, one, two};
  synthetic.pointers = {1, 2};
  synthetic.symbols = {{"_record", kData}};
  synthetic.imports = {{"_needed"}, {"_wanted", true}};
  synthetic.exports = {"_record", "_other"};
  synthetic.commands = {libraryCommand("/usr/lib/libSystem.B.dylib", 0xC, 0x05020304, 0x10000)};
  return synthetic;
}

class ImageTest : public testing::TestWithParam<Fixups> {
 protected:
  const FileBytes file_ = twoPointers(GetParam()).build();
};

TEST_P(ImageTest, ResolvesPointersToTheirTargets) {
  const Image image(file_);
  EXPECT_EQ(image.pointerAt(kData).kind, Pointer::Kind::plain);
  EXPECT_EQ(image.pointerAt(kData).value, 13U);
  ASSERT_EQ(image.pointerAt(kData + 8).kind, Pointer::Kind::image);
  EXPECT_EQ(image.textAt(image.pointerAt(kData + 8).value), "one");
  ASSERT_EQ(image.pointerAt(kData + 16).kind, Pointer::Kind::image);
  EXPECT_EQ(image.textAt(image.pointerAt(kData + 16).value), "two");
}

TEST_P(ImageTest, ListsExportsAndImports) {
  const Image image(file_);
  EXPECT_THAT(image.exports(), UnorderedElementsAre(testing::Field(&macho::Export::name, "_record"),
                                                    testing::Field(&macho::Export::name, "_other")));
  ASSERT_EQ(image.imports().size(), 2U);
  EXPECT_EQ(image.imports()[0].name, "_needed");
  EXPECT_FALSE(image.imports()[0].is_weak);
  EXPECT_EQ(image.imports()[1].name, "_wanted");
  EXPECT_TRUE(image.imports()[1].is_weak);
}

TEST_P(ImageTest, RefusesEveryTruncation) {
  for (std::size_t size = 0; size < file_.size(); size += size < 0x200 || size >= kContents ? 1 : 0x100) {
    const FileBytes part(file_.begin(), file_.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_THROW(Image{part}, MachoError) << size;
  }
}

TEST_P(ImageTest, ReadsOrRefusesEveryChangedByte) {
  std::size_t refused = 0;
  for (std::size_t at = 0; at < file_.size(); at += at < 0x200 || at >= kContents ? 1 : 0x100) {
    for (const unsigned change : {0x01U, 0x80U, 0xFFU}) {
      FileBytes hostile = file_;
      hostile[at] = static_cast<std::uint8_t>(hostile[at] ^ change);
      try {
        const Image image(hostile);
        macho::checkFile(image);
        macho::checkLibrary(image, {"record"});
        macho::checkModule(image);
      } catch (const MachoError&) {
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, 100U);
}

INSTANTIATE_TEST_SUITE_P(, ImageTest, testing::Values(Fixups::opcodes, Fixups::chains),
                         [](const auto& info) { return testing::PrintToString(info.param); });

TEST(Image, ReadsArchitectureSegmentsAndSymbols) {
  const FileBytes file = twoPointers(Fixups::opcodes).build();
  const Image image(file);
  EXPECT_EQ(image.architecture(), "arm64");
  EXPECT_FALSE(image.isProgram());
  ASSERT_EQ(image.segments().size(), 2U);
  EXPECT_EQ(image.segmentAt(kData).name, "__DATA");
  EXPECT_TRUE(image.segmentAt(kData).writable);
  EXPECT_FALSE(image.segmentAt(kData).executable);
  EXPECT_EQ(image.segmentAt(0x1000).name, "__TEXT");
  EXPECT_FALSE(image.segmentAt(0x1000).writable);
  EXPECT_TRUE(image.segmentAt(0x1000).executable);
  ASSERT_EQ(image.symbols().size(), 1U);
  EXPECT_EQ(image.symbols()[0].name, "_record");
  EXPECT_EQ(image.symbols()[0].address, kData);
}

TEST(Image, ReadsLinkedLibrariesAndVersions) {
  const FileBytes file = twoPointers(Fixups::opcodes).build();
  const Image image(file);
  ASSERT_EQ(image.libraries().size(), 1U);
  EXPECT_EQ(image.libraries()[0].path, "/usr/lib/libSystem.B.dylib");
  EXPECT_EQ(image.libraries()[0].version, "1282.3.4");
  EXPECT_EQ(image.libraries()[0].compatibility, "1.0.0");
  EXPECT_FALSE(image.identity());
  EXPECT_FALSE(image.oldestSystem());
}

TEST(Image, DataThatBecomesReadOnlyIsNotWritable) {
  SyntheticImage synthetic = twoPointers(Fixups::opcodes);
  synthetic.data_segment_flags = 0x10;
  const FileBytes file = synthetic.build();
  EXPECT_FALSE(Image(file).segmentAt(kData).writable);
}

TEST(Image, RefusesAddressesOutsideSegmentsAndFile) {
  const FileBytes file = twoPointers(Fixups::opcodes).build();
  const Image image(file);
  EXPECT_THROW(image.segmentAt(0x100000), MachoError);
  EXPECT_THROW(image.numberAt(kData + 17), MachoError);  // the segment goes on in memory, not in the file
  EXPECT_THROW(image.textAt(kData + 100), MachoError);
}

TEST(Image, RefusesOtherFiles) {
  const FileBytes elf{0x7F, 'E', 'L', 'F', 2, 1, 1, 0};
  EXPECT_THROW(Image{elf}, MachoError);
  EXPECT_THROW(macho::imagesIn(FileBytes{}), MachoError);
}

TEST(ImagesIn, ListsArchitecturesOfUniversalFileInOrder) {
  SyntheticImage arm = twoPointers(Fixups::chains);
  SyntheticImage intel = twoPointers(Fixups::opcodes);
  intel.cpu = kX86_64;
  const FileBytes file = universal({intel.build(), arm.build()}, {intel.cpu, arm.cpu});
  const std::vector<Image> images = macho::imagesIn(file);
  ASSERT_EQ(images.size(), 2U);
  EXPECT_EQ(images[0].architecture(), "x86_64");
  EXPECT_EQ(images[1].architecture(), "arm64");
  EXPECT_EQ(images[1].textAt(images[1].pointerAt(kData + 16).value), "two");
}

TEST(ImagesIn, RefusesUnboundedListOfArchitectures) {
  const FileBytes file{0xCA, 0xFE, 0xBA, 0xBE, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_THROW(macho::imagesIn(file), MachoError);
}

}  // namespace
