// The methods that look into a profile file.
#include "support/icc_maker.h"
#include "support/temporary_folder.h"
#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using support::IccMaker;

constexpr std::int32_t kNoError = 0;
constexpr std::int32_t kFailedToReadTag = 466;

class FileMethods : public MethodTest {
 protected:
  /// A profile with this document in its tag.
  std::string profileWith(const std::string& document) {
    return folder.write("with.icc",
                        IccMaker().description("a").tag("QV02", "text" + std::string(4, '\0') + document).bytes());
  }

  devhost::CallResult read(const std::string& path) { return plugin.call("QV02Read", {path, "before"}); }

  const support::TemporaryFolder folder;
};

TEST_F(FileMethods, QV02ReadReplacesTheArgument) {
  const auto result = read(profileWith("<profile name=\"Größe\"/>"));
  EXPECT_EQ(result.result.integer(), kNoError);
  EXPECT_EQ(result["xmlString"].text(), "<profile name=\"Größe\"/>");
}

TEST_F(FileMethods, QV02ReadKeepsNulsInTheDocument) {
  const std::string document("<a>\0</a>\0", 9);
  EXPECT_EQ(read(profileWith(document))["xmlString"].text(), document);
}

TEST_F(FileMethods, QV02ReadAcceptsAnEmptyDocument) {
  const auto result = read(profileWith(""));
  EXPECT_EQ(result.result.integer(), kNoError);
  EXPECT_EQ(result["xmlString"].text(), "");
}

TEST_F(FileMethods, QV02ReadWithoutTheTagStoresAnEmptyText) {
  const auto result = read(folder.write("without.icc", support::displayProfile("a")));
  EXPECT_EQ(result.result.integer(), kFailedToReadTag);
  EXPECT_EQ(result["xmlString"].text(), "");
}

TEST_F(FileMethods, ICCTagExistsFindsTheTagsOfTheFile) {
  const std::string path = profileWith("a");
  EXPECT_TRUE(plugin.call("ICCTagExists", {path, "QV02"}).result.boolean());
  EXPECT_TRUE(plugin.call("ICCTagExists", {path, "desc"}).result.boolean());
  EXPECT_FALSE(plugin.call("ICCTagExists", {path, "qv02"}).result.boolean());
  EXPECT_FALSE(plugin.call("ICCTagExists", {path, "QV0"}).result.boolean());
  EXPECT_FALSE(plugin.call("ICCTagExists", {path, ""}).result.boolean());
}

}  // namespace
