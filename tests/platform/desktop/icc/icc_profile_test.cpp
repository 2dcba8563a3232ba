#include "desktop/icc/icc_profile.h"

#include <gmock/gmock.h>
#include <lcms2.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::IccProfile;
using platform::desktop::iccSignature;
using platform::desktop::IccTag;
using platform::desktop::kMaxIccFileSize;
using platform::desktop::kMaxIccTags;
using support::IccMaker;
using support::TemporaryFolder;
using testing::Eq;
using testing::Optional;

/// A profile in a file of its own.
class OpenProfile {
 public:
  explicit OpenProfile(const std::string& bytes) : profile_(IccProfile::open(folder_.write("a.icc", bytes))) {}
  explicit operator bool() const { return profile_.has_value(); }
  const IccProfile* operator->() const { return &*profile_; }
  bool has(const char (&signature)[5]) const { return profile_->find(iccSignature(signature)).has_value(); }
  /// The element of a tag that the table has; nothing when it cannot be read.
  std::optional<std::string> element(const char (&signature)[5]) const {
    const IccTag tag = profile_->find(iccSignature(signature)).value();
    std::string bytes(tag.size, '\0');
    return profile_->read(tag.offset, bytes.data(), bytes.size()) ? std::optional(bytes) : std::nullopt;
  }
  const TemporaryFolder& folder() const { return folder_; }

 private:
  TemporaryFolder folder_;
  std::optional<IccProfile> profile_;
};

bool opensInLcms(const std::string& bytes) {
  const cmsHPROFILE profile = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
  if (profile == nullptr) {
    return false;
  }
  cmsCloseProfile(profile);
  return true;
}

TEST(IccProfile, ReturnsWhereATagLies) {
  const OpenProfile profile(IccMaker().tag("desc", "12345").tag("QV02", "1234567890").bytes());
  ASSERT_TRUE(profile);
  EXPECT_THAT(profile->find(iccSignature("desc")), Optional(Eq(IccTag{iccSignature("desc"), 156, 5})));
  EXPECT_THAT(profile->find(iccSignature("QV02")), Optional(Eq(IccTag{iccSignature("QV02"), 164, 10})));
  EXPECT_FALSE(profile.has("cprt"));
  EXPECT_FALSE(profile.has("DESC"));
}

TEST(IccProfile, AcceptsTheClassesThatIccNamesOrNone) {
  for (const char* const known : {"mntr", "prtr", "scnr", "spac", "link", "abst", "nmcl"}) {
    const std::string bytes = IccMaker().deviceClass(known).bytes();
    EXPECT_THAT(OpenProfile(bytes)->deviceClass(), Optional(Eq(known)));
    EXPECT_TRUE(opensInLcms(bytes)) << known;
  }
  for (const char* const unknown : {"MNTR", "mnt ", "xxxx", "mnt\xFF"}) {
    const std::string bytes = IccMaker().deviceClass(unknown).bytes();
    EXPECT_FALSE(OpenProfile(bytes)) << unknown;
    EXPECT_FALSE(opensInLcms(bytes)) << unknown;
  }
  const std::string without = IccMaker().deviceClass(std::string(4, '\0')).bytes();
  EXPECT_EQ(OpenProfile(without)->deviceClass(), std::nullopt);
  EXPECT_TRUE(opensInLcms(without));
}

TEST(IccProfile, AcceptsVersionsUpToFive) {
  for (const std::uint32_t version :
       {0x00000000U, 0x02100000U, 0x04400000U, 0x05000000U, 0x05010000U, 0x06000000U, 0xFFFFFFFFU}) {
    std::string bytes = support::displayProfile("a");
    bytes.replace(8, 4, support::bigEndian32(version));
    EXPECT_EQ(static_cast<bool>(OpenProfile(bytes)), version <= 0x05000000U) << version;
    EXPECT_EQ(opensInLcms(bytes), version <= 0x05000000U) << version;
  }
}

TEST(IccProfile, AcceptsAFileWithoutTags) {
  const OpenProfile profile(IccMaker().bytes());
  ASSERT_TRUE(profile);
  EXPECT_FALSE(profile.has("desc"));
}

TEST(IccProfile, RefusesAFileWithoutTheMark) {
  std::string bytes = support::displayProfile("a");
  bytes[36] = 'A';
  EXPECT_FALSE(OpenProfile(bytes));
  EXPECT_FALSE(opensInLcms(bytes));
}

TEST(IccProfile, RefusesAFileThatEndsBeforeTheTagTable) {
  const std::string bytes = IccMaker().tag("desc", "").tag("cprt", "").bytes();
  ASSERT_EQ(bytes.size(), 156U);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(OpenProfile(bytes.substr(0, size))) << size;
  }
  EXPECT_TRUE(OpenProfile(bytes));
}

TEST(IccProfile, RefusesATagCountAboveTheFilesSize) {
  for (const std::uint32_t count : {3U, 0x7FFFFFFFU, 0x80000000U, 0x15555556U, 0xFFFFFFFFU}) {
    EXPECT_FALSE(
        OpenProfile(IccMaker().description("a").declaredTagCount(count).declaredSize(200).bytes().substr(0, 160)))
        << count;
  }
}

TEST(IccProfile, IgnoresEntriesAfterTheTagCount) {
  const OpenProfile profile(IccMaker().tag("desc", "1").tag("cprt", "2").declaredTagCount(1).bytes());
  EXPECT_TRUE(profile.has("desc"));
  EXPECT_FALSE(profile.has("cprt"));
}

TEST(IccProfile, IgnoresATagThatReachesOutOfTheFile) {
  const OpenProfile profile(IccMaker()
                                .tag("good", "1234")
                                .tableLine("far ", 0x7FFFFFFF, 4)
                                .tableLine("long", 128, 0xFFFFFFFF)
                                .tableLine("wrap", 0xFFFFFFFC, 8)
                                .tableLine("both", 0xFFFFFFFF, 0xFFFFFFFF)
                                .bytes());
  ASSERT_TRUE(profile);
  EXPECT_TRUE(profile.has("good"));
  EXPECT_FALSE(profile.has("far "));
  EXPECT_FALSE(profile.has("long"));
  EXPECT_FALSE(profile.has("wrap"));
  EXPECT_FALSE(profile.has("both"));
}

TEST(IccProfile, AcceptsAnElementUpToTheLastByte) {
  const std::string head = IccMaker().tableLine("edge", 200, 8).tableLine("over", 200, 9).declaredSize(208).bytes();
  const OpenProfile profile(head + std::string(208 - head.size(), 'x'));
  EXPECT_TRUE(profile.has("edge"));
  EXPECT_FALSE(profile.has("over"));
}

TEST(IccProfile, AcceptsElementsThatOverlap) {
  const OpenProfile profile(
      IccMaker().tableLine("head", 0, 128).tableLine("tabl", 128, 40).tableLine("same", 128, 40).bytes());
  EXPECT_TRUE(profile.has("head"));
  EXPECT_TRUE(profile.has("tabl"));
  EXPECT_TRUE(profile.has("same"));
}

TEST(IccProfile, IgnoresATagBeyondTheSizeInTheHeader) {
  const std::string bytes = IccMaker().tag("near", "1234").tag("QV02", "12345678").declaredSize(160).bytes();
  const OpenProfile profile(bytes);
  EXPECT_TRUE(profile.has("near"));
  EXPECT_FALSE(profile.has("QV02"));
}

TEST(IccProfile, UsesTheFilesSizeWhenTheHeadersIsLarger) {
  const OpenProfile profile(IccMaker().tag("near", "1234").tableLine("far ", 1000, 4).declaredSize(0xFFFFFFFF).bytes());
  EXPECT_TRUE(profile.has("near"));
  EXPECT_FALSE(profile.has("far "));
}

TEST(IccProfile, ReturnsTheFirstOfSeveralTagsWithOneSignature) {
  const OpenProfile profile(IccMaker().tag("QV02", "first").tag("QV02", "second").bytes());
  EXPECT_EQ(profile->find(iccSignature("QV02"))->size, 5U);
}

TEST(IccProfile, FindsTagsAmongMoreThanLcmsAccepts) {
  IccMaker maker;
  for (int i = 0; i < 5000; ++i) {
    char signature[5];
    std::snprintf(signature, sizeof(signature), "%04d", i);
    maker.tag(signature, std::string(static_cast<std::size_t>(i % 7), 'x'));
  }
  const std::string bytes = maker.description("the last").bytes();
  EXPECT_FALSE(opensInLcms(bytes));
  const OpenProfile profile(bytes);
  ASSERT_TRUE(profile);
  EXPECT_TRUE(profile.has("0000"));
  EXPECT_TRUE(profile.has("0100"));
  EXPECT_TRUE(profile.has("4999"));
  EXPECT_TRUE(profile.has("desc"));
  EXPECT_FALSE(profile.has("5000"));
}

TEST(IccProfile, RefusesMoreTagsThanTheBound) {
  std::string bytes = IccMaker().declaredTagCount(kMaxIccTags + 1).bytes();
  bytes.resize(132 + std::size_t{12} * (kMaxIccTags + 1));
  EXPECT_FALSE(OpenProfile(bytes));
  bytes.replace(128, 4, support::bigEndian32(kMaxIccTags));
  EXPECT_TRUE(OpenProfile(bytes));
}

TEST(IccProfile, RefusesAFileAboveTheLargestSize) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", IccMaker().bytes());
  ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(kMaxIccFileSize)), 0);
  EXPECT_TRUE(IccProfile::open(path));
  ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(kMaxIccFileSize + 1)), 0);
  EXPECT_FALSE(IccProfile::open(path));
}

TEST(IccProfile, OpensARegularFileWithoutLookingFirst) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  constexpr bool kIsRegular = true;
  EXPECT_TRUE(IccProfile::open(folder.write("a.icc", IccMaker().bytes()), kIsRegular));
  EXPECT_FALSE(IccProfile::open(folder.path("pipe"), kIsRegular));
  EXPECT_FALSE(IccProfile::open(folder.path("missing"), kIsRegular));
}

TEST(IccProfile, RefusesAReadThatReachesOutOfTheFile) {
  const OpenProfile profile(IccMaker().tag("QV02", "1234").bytes());
  char byte = 0;
  EXPECT_TRUE(profile->read(profile->fileSize() - 1, &byte, 1));
  EXPECT_FALSE(profile->read(profile->fileSize(), &byte, 1));
  EXPECT_FALSE(profile->read(UINT64_MAX, &byte, 1));
  EXPECT_FALSE(profile->read(4, &byte, SIZE_MAX));
}

/// A profile of which a tag "near" lies in what is kept, and a tag "far " behind it.
std::string largeProfile() {
  return IccMaker().tag("near", "1234").tag("fill", std::string(IccProfile::kKeptSize, 'x')).tag("far ", "56").bytes();
}

TEST(IccProfile, ReadsWhatIsKeptOfAFileThatIsGone) {
  const OpenProfile profile(largeProfile());
  EXPECT_EQ(profile.element("near"), "1234");
  EXPECT_EQ(profile.element("far "), "56");
  std::filesystem::remove(profile.folder().path("a.icc"));
  EXPECT_EQ(profile.element("near"), "1234");
  EXPECT_EQ(profile.element("far "), std::nullopt);
}

TEST(IccProfile, ReadsNothingOfAFileThatHasChanged) {
  const OpenProfile profile(largeProfile());
  std::filesystem::rename(profile.folder().write("b", largeProfile()), profile.folder().path("a.icc"));
  EXPECT_EQ(profile.element("near"), "1234");
  EXPECT_EQ(profile.element("far "), std::nullopt);
}

}  // namespace
