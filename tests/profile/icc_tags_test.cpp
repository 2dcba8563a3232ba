#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "base/owned_ref.h"
#include "frameworks/hooks/calls.h"
#include "profile/profile_services.h"
#include "support/icc_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;
using ProfileServices::ICCTagExists;
using ProfileServices::QV02Read;
using support::IccMaker;
using support::TemporaryFolder;
using testing::Eq;
using testing::Optional;

OwnedRef<CFStringRef> string(const std::string& text) {
  return OwnedRef<CFStringRef>::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                                              static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8,
                                                              false));
}

OwnedRef<CFURLRef> url(const std::string& path) {
  return OwnedRef<CFURLRef>::adopt(
      CFURLCreateWithFileSystemPath(nullptr, string(path).get(), kCFURLPOSIXPathStyle, false));
}

bool tagExists(const std::string& path, const std::string& signature) {
  return ICCTagExists(url(path).get(), string(signature).get());
}

struct Read {
  std::int32_t code = -1;
  std::optional<std::string> xml = "left over";
};

Read qv02(const std::string& path) {
  Read read;
  read.code = QV02Read(url(path).get(), read.xml);
  return read;
}

/// What is read from a profile with this QV02 element.
Read qv02OfElement(const std::string& element) {
  const TemporaryFolder folder;
  return qv02(folder.write("a.icc", IccMaker().description("a").tag("QV02", element).bytes()));
}

constexpr const char* kTypeAndReserved = "text\x01\x02\x03\x04";

// --- ICCTagExists

TEST(IccTagExists, IsTrueForTagsOfTheProfile) {
  const TemporaryFolder folder;
  const std::string path =
      folder.write("a.icc", IccMaker().description("a").tag("QV02", "12345678").tag("zero", "").bytes());
  EXPECT_TRUE(tagExists(path, "desc"));
  EXPECT_TRUE(tagExists(path, "QV02"));
  EXPECT_TRUE(tagExists(path, "zero"));
}

TEST(IccTagExists, IsFalseForOtherSignatures) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", support::displayProfile("a"));
  for (const char* const signature :
       {"QV02", "Desc", "DESC", "des", "desc ", " desc", "", "d", "dësc", "色", "descdesc"}) {
    EXPECT_FALSE(tagExists(path, signature)) << signature;
  }
}

TEST(IccTagExists, IsFalseForInvalidFiles) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(tagExists(folder.path("missing"), "desc"));
  EXPECT_FALSE(tagExists(folder.path("pipe"), "desc"));
  EXPECT_FALSE(tagExists(folder.path(), "desc"));
  EXPECT_FALSE(tagExists(folder.write("empty", ""), "desc"));
  EXPECT_FALSE(tagExists("/dev/zero", "desc"));
}

TEST(IccTagExists, IsFalseForNull) {
  const TemporaryFolder folder;
  const auto file = url(folder.write("a.icc", support::displayProfile("a")));
  EXPECT_FALSE(ICCTagExists(nullptr, string("desc").get()));
  EXPECT_FALSE(ICCTagExists(file.get(), nullptr));
}

TEST(IccTagExists, AgreesWithQv02Read) {
  const TemporaryFolder folder;
  const std::string with = folder.write("with.icc", IccMaker().tag("QV02", "").bytes());
  const std::string without = folder.write("without.icc", IccMaker().bytes());
  EXPECT_TRUE(tagExists(with, "QV02"));
  EXPECT_EQ(qv02(with).code, kQVINoError);
  EXPECT_FALSE(tagExists(without, "QV02"));
  EXPECT_EQ(qv02(without).code, kQVIFailedToReadTag);
}

// --- QV02Read

TEST(Qv02Read, ReturnsTheBytesAfterTheFirstEight) {
  const Read read = qv02OfElement(kTypeAndReserved + std::string("<?xml version=\"1.0\"?><a>ü</a>"));
  EXPECT_EQ(read.code, 0);
  EXPECT_THAT(read.xml, Optional(Eq("<?xml version=\"1.0\"?><a>ü</a>")));
}

TEST(Qv02Read, ReturnsAnEmptyDocumentForEightBytes) {
  const Read read = qv02OfElement(kTypeAndReserved);
  EXPECT_EQ(read.code, kQVINoError);
  EXPECT_THAT(read.xml, Optional(Eq("")));
}

TEST(Qv02Read, ReturnsAnEmptyDocumentForLessThanEightBytes) {
  for (std::size_t size = 0; size < 8; ++size) {
    const Read read = qv02OfElement(std::string(kTypeAndReserved, size));
    EXPECT_EQ(read.code, kQVINoError) << size;
    EXPECT_THAT(read.xml, Optional(Eq(""))) << size;
  }
}

TEST(Qv02Read, KeepsNulsAndInvalidUtf8) {
  const std::string document("\0a\0\xFF\xC0\x80\xED\xA0\x80\0\0", 11);
  EXPECT_THAT(qv02OfElement(kTypeAndReserved + document).xml, Optional(Eq(document)));
}

TEST(Qv02Read, IgnoresTheType) {
  EXPECT_THAT(qv02OfElement(std::string(8, '\0') + "x").xml, Optional(Eq("x")));
  EXPECT_THAT(qv02OfElement("desc\xFF\xFF\xFF\xFFx").xml, Optional(Eq("x")));
}

TEST(Qv02Read, Returns64MiB) {
  std::string document(64 << 20, '\0');
  for (std::size_t i = 0; i < document.size(); i += 4096) {
    document[i] = static_cast<char>(i >> 12);
    document[i + 1] = static_cast<char>(i >> 20);
  }
  const Read read = qv02OfElement(kTypeAndReserved + document);
  EXPECT_EQ(read.code, kQVINoError);
  EXPECT_TRUE(read.xml == document);
}

TEST(Qv02Read, ReturnsDocumentsOfAnySizeWhole) {
  for (const std::size_t boundary : {64U << 10, 256U << 10, 1U << 20, 2U << 20, 3U << 20}) {
    for (std::size_t element = boundary - 9; element <= boundary + 9; ++element) {
      std::string document(element - 8, '\0');
      for (std::size_t i = 0; i < document.size(); ++i) {
        document[i] = static_cast<char>(i * 31 + i / 251);
      }
      const Read read = qv02OfElement(kTypeAndReserved + document);
      EXPECT_EQ(read.code, kQVINoError);
      EXPECT_TRUE(read.xml == document) << element;
    }
  }
}

TEST(Qv02Read, ClearsTheResultWithoutTheTag) {
  const TemporaryFolder folder;
  const Read read = qv02(folder.write("a.icc", support::displayProfile("a")));
  EXPECT_EQ(read.code, 466);
  EXPECT_EQ(read.xml, std::nullopt);
}

TEST(Qv02Read, FailsForInvalidFiles) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  for (const std::string& path : {folder.path("missing"), folder.path("pipe"), folder.path(), folder.write("empty", ""),
                                  folder.write("text", std::string(500, 'x')), std::string("/dev/zero")}) {
    const Read read = qv02(path);
    EXPECT_EQ(read.code, kQVIFailedToReadTag) << path;
    EXPECT_EQ(read.xml, std::nullopt) << path;
  }
}

TEST(Qv02Read, FailsForAnUnreadableFile) {
  const TemporaryFolder folder;
  chmod(folder.path().c_str(), 0755);
  const std::string path = folder.write("a.icc", IccMaker().tag("QV02", kTypeAndReserved).bytes());
  chmod(path.c_str(), 0);
  EXPECT_TRUE(support::holdsUnprivileged([&] { return qv02(path).code == kQVIFailedToReadTag; }));
}

TEST(Qv02Read, FailsForNull) {
  Read read;
  EXPECT_EQ(QV02Read(nullptr, read.xml), kQVIFailedToReadTag);
  EXPECT_EQ(read.xml, std::nullopt);
}

TEST(Qv02Read, FailsForATagBeyondTheFile) {
  const TemporaryFolder folder;
  EXPECT_EQ(qv02(folder.write("a", IccMaker().tableLine("QV02", 144, 0xFFFFFFFF).bytes())).code, kQVIFailedToReadTag);
  EXPECT_EQ(qv02(folder.write("b", IccMaker().tableLine("QV02", 0xFFFFFFF0, 16).bytes())).code, kQVIFailedToReadTag);
}

TEST(Qv02Read, ReadsATagBehindFiveThousandOthers) {
  const TemporaryFolder folder;
  IccMaker maker;
  for (int i = 0; i < 5000; ++i) {
    maker.tag(std::to_string(1000 + i), "x");
  }
  const std::string path = folder.write("a.icc", maker.tag("QV02", kTypeAndReserved + std::string("xml")).bytes());
  EXPECT_THAT(qv02(path).xml, Optional(Eq("xml")));
  EXPECT_TRUE(tagExists(path, "5999"));
}

TEST(Qv02Read, CopiesTheTagTwiceAndUsesTheSecondCopy) {
  const TemporaryFolder folder;
  const std::string path = folder.write("a.icc", IccMaker().tag("QV02", kTypeAndReserved).bytes());
  const auto before = platform::calls::count(Call::ColorSyncProfileCopyTag);
  EXPECT_EQ(qv02(path).code, kQVINoError);
  EXPECT_EQ(platform::calls::count(Call::ColorSyncProfileCopyTag), before + 2);
  platform::calls::setHook(Call::ColorSyncProfileCopyTag, [](std::uint64_t nth) { return Fault{nth == 2}; });
  const Read read = qv02(path);
  platform::calls::removeAllHooks();
  EXPECT_EQ(read.code, kQVIFailedToReadTag);
  EXPECT_EQ(read.xml, std::nullopt);
}

}  // namespace
