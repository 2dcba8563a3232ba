// Assignments of profiles in a real colord; colormgr is the oracle.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/desktop/colord/displays.h"
#include "support/private_colord.h"

namespace colord_test {
namespace {

namespace fs = std::filesystem;
using support::PrivateColord;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// A display that a session daemon has registered as "registered".
class ColordAssignment : public testing::Test {
 protected:
  ColordAssignment() {
    colord_.registerDevice("registered", {{"XRANDR_name", "DP-1"}, {"OutputEdidMd5", md5(firstEdid())}});
  }

  bool assign(const std::string& file) { return devices_.assign(*display_.uuid, file); }
  void expectDefault(const std::string& file) {
    EXPECT_EQ(colord_.defaultProfileFile("registered"), file);
    EXPECT_EQ(currentFile(devices_, display_), file);
  }
  void writeFile(const fs::path& file, const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; }
  std::string readFile(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  PrivateColord colord_;
  Display display_ = makeDisplay(1, "DP-1", firstEdid());
  ColordDevices devices_ = devicesFor({display_});
};

TEST_F(ColordAssignment, AcceptsAFileThatColordHas) {
  EXPECT_TRUE(assign(kAdobe));
  expectDefault(kAdobe);
}

TEST_F(ColordAssignment, AcceptsAFileAnywhereWithAnyName) {
  const auto file = colord_.copyOfProfile("AdobeRGB1998.icc", "Büro 2, links; 100% #1.icc");
  EXPECT_TRUE(assign(file));
  expectDefault(file);
}

TEST_F(ColordAssignment, SeparatesFilesWithTheSameContents) {
  const auto first = colord_.copyOfProfile("AppleRGB.icc", "first.icc");
  const auto second = colord_.copyOfProfile("AppleRGB.icc", "second.icc");
  EXPECT_TRUE(assign(first));
  expectDefault(first);
  EXPECT_TRUE(assign(second));
  expectDefault(second);
}

TEST_F(ColordAssignment, ReplacesTheDefaultAndKeepsTheOthers) {
  EXPECT_TRUE(assign(kAdobe));
  EXPECT_TRUE(assign(kApple));
  expectDefault(kApple);
  EXPECT_EQ(walk(devices_).size(), 2U);
  EXPECT_TRUE(assign(kAdobe));
  expectDefault(kAdobe);
  EXPECT_TRUE(assign(kAdobe));
  expectDefault(kAdobe);
  EXPECT_EQ(walk(devices_).size(), 2U);
}

TEST_F(ColordAssignment, AcceptsAFileWhoseContentsChanged) {
  const auto file = colord_.copyOfProfile("AppleRGB.icc", "calibrated.icc");
  EXPECT_TRUE(assign(file));
  EXPECT_TRUE(assign(kAdobe));
  writeFile(file, readFile("/usr/share/color/icc/colord/BestRGB.icc"));
  EXPECT_TRUE(assign(file));
  expectDefault(file);
}

TEST_F(ColordAssignment, AcceptsAGreyDisplayProfile) {
  writeFile(colord_.directory() / "grey.icc", readFile(kApple).replace(16, 4, "GRAY"));
  EXPECT_TRUE(assign(colord_.directory() / "grey.icc"));
  expectDefault(colord_.directory() / "grey.icc");
}

TEST_F(ColordAssignment, RefusesFilesThatAreNotReadableDisplayProfiles) {
  const fs::path directory = colord_.directory();
  const std::string good = readFile(kAdobe);
  writeFile(directory / "empty.icc", "");
  writeFile(directory / "text.icc", std::string(4096, 'x'));
  writeFile(directory / "header.icc", good.substr(0, 128));
  writeFile(directory / "truncated.icc", good.substr(0, good.size() / 2));
  writeFile(directory / "printer.icc", std::string(good).replace(12, 4, "prtr"));
  writeFile(directory / "input.icc", std::string(good).replace(12, 4, "scnr"));
  writeFile(directory / "no-signature.icc", std::string(good).replace(36, 4, "xxxx"));
  writeFile(directory / "no-tags.icc", good.substr(0, 3) + '\x84' + good.substr(4, 124) + std::string(4, '\0'));
  ASSERT_EQ(mkfifo((directory / "pipe.icc").c_str(), 0600), 0);
  fs::create_symlink(directory / "nowhere", directory / "dangling.icc");
  EXPECT_TRUE(assign(kApple));
  for (const char* name : {"empty.icc", "text.icc", "header.icc", "truncated.icc", "printer.icc", "input.icc",
                           "no-signature.icc", "no-tags.icc", "pipe.icc", "dangling.icc", "missing.icc", "."}) {
    EXPECT_FALSE(assign(directory / name)) << name;
  }
  EXPECT_FALSE(assign("/usr/share/color/icc/colord/Crayons.icc"));
  EXPECT_FALSE(assign(""));
  EXPECT_FALSE(assign("AdobeRGB1998.icc"));
  expectDefault(kApple);
  // Refused files leave nothing in colord.
  EXPECT_THAT(colord_.colormgr({"get-profiles"}), Not(testing::HasSubstr(directory.string())));
}

TEST_F(ColordAssignment, RefusesAFileWhoseNameIsNotUtf8) {
  EXPECT_FALSE(assign(colord_.copyOfProfile("AppleRGB.icc", "caf\xE9.icc")));
  EXPECT_TRUE(assign(kApple));
  expectDefault(kApple);
}

TEST_F(ColordAssignment, IgnoresRememberedNamesThatAreNotUtf8) {
  const fs::path remembered = colord_.directory() / "user-state" / "ostrevin" / "assigned-profiles";
  fs::create_directories(remembered);
  fs::create_symlink(colord_.copyOfProfile("AppleRGB.icc", "caf\xE9.icc"), remembered / "file");
  fs::create_symlink(kAdobe, remembered / "%E9");
  EXPECT_TRUE(assign(kApple));
  expectDefault(kApple);
}

TEST_F(ColordAssignment, RegistersAnUnregisteredDisplayWhoseConnectorIsNotUtf8) {
  const Display other = makeDisplay(2, "DP-\xE9", {});
  const ColordDevices devices = devicesFor({other});
  EXPECT_TRUE(devices.assign(*other.uuid, kAdobe));
  EXPECT_EQ(colord_.defaultProfileFile("xrandr-DP-\uFFFD"), kAdobe);
}

TEST_F(ColordAssignment, RefusesAnUnknownDevice) {
  EXPECT_FALSE(devices_.assign(Uuid{0xFF}, kAdobe));
  EXPECT_FALSE(devicesFor({}).assign(*display_.uuid, kAdobe));
  EXPECT_THAT(walk(devices_), IsEmpty());
}

TEST_F(ColordAssignment, RegistersAnUnregisteredDisplayLikeASessionDaemon) {
  const Display other = makeDisplay(2, "HDMI-1", secondEdid());
  const ColordDevices devices = devicesFor({display_, other});
  ASSERT_TRUE(devices.assign(*other.uuid, kAdobe));
  EXPECT_EQ(currentFile(devices, other), kAdobe);
  EXPECT_EQ(currentFile(devices, display_), std::nullopt);

  const std::string device = colord_.colormgr({"find-device-by-property", "XRANDR_name", "HDMI-1"});
  const auto one = [&](const char* name) { return PrivateColord::fields(device, name); };
  EXPECT_THAT(one("Type"), ElementsAre("display"));
  EXPECT_THAT(one("Colorspace"), ElementsAre("rgb"));
  EXPECT_THAT(one("Model"), ElementsAre("HP Z27x"));
  EXPECT_THAT(one("Serial"), ElementsAre("27001"));
  EXPECT_THAT(one("Scope"), ElementsAre("disk"));
  EXPECT_THAT(one("Metadata"), Contains("OutputEdidMd5=" + md5(secondEdid())));
  EXPECT_THAT(one("Metadata"), Contains("OutputPriority=secondary"));
  EXPECT_THAT(one("Device ID").at(0), testing::EndsWith("-HP Z27x-27001"));
  EXPECT_EQ(colord_.defaultProfileFile(one("Device ID").at(0)), kAdobe);
}

TEST_F(ColordAssignment, RegistersADisplayWithoutEdidByItsConnector) {
  const Display other = makeDisplay(2, "VGA-1", {});
  const ColordDevices devices = devicesFor({display_, other});
  ASSERT_TRUE(devices.assign(*other.uuid, kAdobe));
  EXPECT_EQ(currentFile(devices, other), kAdobe);
  EXPECT_EQ(colord_.defaultProfileFile("xrandr-VGA-1"), kAdobe);
}

TEST_F(ColordAssignment, SeparatesIdenticalUnregisteredMonitors) {
  const Display left = makeDisplay(2, "DP-2", secondEdid());
  const Display right = makeDisplay(3, "DP-3", secondEdid());
  const ColordDevices devices = devicesFor({display_, left, right});
  ASSERT_TRUE(devices.assign(*left.uuid, kAdobe));
  ASSERT_TRUE(devices.assign(*right.uuid, kApple));
  EXPECT_EQ(currentFile(devices, left), kAdobe);
  EXPECT_EQ(currentFile(devices, right), kApple);
  EXPECT_EQ(colord_.defaultProfileFile("xrandr-DP-2"), kAdobe);
  EXPECT_EQ(colord_.defaultProfileFile("xrandr-DP-3"), kApple);
}

TEST_F(ColordAssignment, SeparatesIdenticalMonitorsWhenOneIsRegistered) {
  const Display twin = makeDisplay(2, "DP-2", firstEdid());
  const ColordDevices devices = devicesFor({display_, twin});
  ASSERT_TRUE(devices.assign(*display_.uuid, kAdobe));
  EXPECT_EQ(currentFile(devices, twin), std::nullopt);
  ASSERT_TRUE(devices.assign(*twin.uuid, kApple));
  expectDefault(kAdobe);
  EXPECT_EQ(currentFile(devices, twin), kApple);
}

}  // namespace
}  // namespace colord_test
