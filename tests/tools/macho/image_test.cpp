#include "tools/macho/image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/macho/synthetic_image.h"

namespace {

using macho::Image;
using macho::MachoError;
using macho::Pointer;

constexpr std::uint64_t kData = SyntheticImage::kDataAddress;

/// Three words of data: a number, a pointer to the text "one", a pointer to the text "two".
SyntheticImage twoPointers(Fixups fixups) {
  SyntheticImage synthetic;
  synthetic.fixups = fixups;
  const std::uint64_t one = synthetic.addText("one");
  const std::uint64_t two = synthetic.addText("two");
  synthetic.data = {13, one, two};
  synthetic.pointers = {1, 2};
  synthetic.symbols = {{"_record", kData}};
  return synthetic;
}

class ImageWithFixups : public testing::TestWithParam<Fixups> {};

TEST_P(ImageWithFixups, ResolvesEachPointerToItsTarget) {
  const FileBytes file = twoPointers(GetParam()).build();
  const Image image(file);
  EXPECT_EQ(image.pointerAt(kData).kind, Pointer::Kind::plain);
  EXPECT_EQ(image.pointerAt(kData).value, 13U);
  ASSERT_EQ(image.pointerAt(kData + 8).kind, Pointer::Kind::image);
  EXPECT_EQ(image.textAt(image.pointerAt(kData + 8).value), "one");
  ASSERT_EQ(image.pointerAt(kData + 16).kind, Pointer::Kind::image);
  EXPECT_EQ(image.textAt(image.pointerAt(kData + 16).value), "two");
}

TEST_P(ImageWithFixups, IsRefusedWhereverItIsCutOff) {
  const FileBytes file = twoPointers(GetParam()).build();
  for (std::size_t size = 0; size < file.size(); size += size < 0x200 || size >= 0x1000 ? 1 : 0x100) {
    const FileBytes part(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_THROW(Image{part}, MachoError) << size;
  }
}

INSTANTIATE_TEST_SUITE_P(, ImageWithFixups, testing::Values(Fixups::opcodes, Fixups::chains),
                         [](const auto& info) { return info.param == Fixups::opcodes ? "Opcodes" : "Chains"; });

TEST(Image, KnowsItsArchitectureItsSegmentsAndItsSymbols) {
  SyntheticImage synthetic = twoPointers(Fixups::opcodes);
  const FileBytes file = synthetic.build();
  const Image image(file);
  EXPECT_EQ(image.architecture(), "arm64");
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

TEST(Image, CallsASegmentThatBecomesReadOnlyNotWritable) {
  SyntheticImage synthetic = twoPointers(Fixups::opcodes);
  synthetic.dataSegmentFlags = 0x10;
  const FileBytes file = synthetic.build();
  EXPECT_FALSE(Image(file).segmentAt(kData).writable);
}

TEST(Image, RefusesAddressesOutsideItsSegmentsAndItsFile) {
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

TEST(ImagesIn, AreTheArchitecturesOfAUniversalFileInOrder) {
  SyntheticImage arm = twoPointers(Fixups::chains);
  SyntheticImage intel = twoPointers(Fixups::opcodes);
  intel.cpu = 0x01000007;
  const FileBytes file = universal({intel.build(), arm.build()}, {intel.cpu, arm.cpu});
  const std::vector<Image> images = macho::imagesIn(file);
  ASSERT_EQ(images.size(), 2U);
  EXPECT_EQ(images[0].architecture(), "x86_64");
  EXPECT_EQ(images[1].architecture(), "arm64");
  EXPECT_EQ(images[1].textAt(images[1].pointerAt(kData + 16).value), "two");
}

}  // namespace
