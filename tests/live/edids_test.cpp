#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "desktop/model/desktop.h"
#include "desktop/model/display_layout.h"
#include "live/agreement.h"
#include "support/edid_maker.h"
#include "support/xorg_server.h"

namespace {

using live::liveDesktopOf;
using platform::desktop::Arrangement;
using support::decodedName;
using support::EdidBytes;
using support::makeEdid;
using support::XorgServer;

using Names = std::vector<std::pair<std::string, std::string>>;

class LiveEdids : public testing::Test {
 protected:
  void placeTwo() { server.place({{"DUMMY0", {1024, 768, 0, 0}}, {"DUMMY1", {800, 600, 1024, 0}}}); }

  void expectNoEdid(const Arrangement& arrangement) {
    ASSERT_EQ(arrangement.displays.size(), 1u);
    EXPECT_TRUE(arrangement.services.empty());
    EXPECT_EQ(arrangement.displays[0].vendor, platform::desktop::kUnknownVendor);
    EXPECT_EQ(arrangement.displays[0].model, platform::desktop::kUnknownModel);
    EXPECT_EQ(arrangement.displays[0].serial, platform::desktop::kUnknownSerial);
    EXPECT_TRUE(arrangement.displays[0].edid.empty());
  }

  XorgServer server;
  std::shared_ptr<platform::desktop::Desktop> desktop = liveDesktopOf(server);
};

TEST_F(LiveEdids, GiveNumbersAndNames) {
  placeTwo();
  const EdidBytes first = makeEdid({.vendor = "APP", .product = 0x9C42, .serial = 77, .name = "Left One"});
  const EdidBytes second =
      makeEdid({.vendor = "DEL", .product = 0xA0B1, .serial = 0xDEADBEEF, .name = "Exactly13Char"});
  server.setEdid("DUMMY0", first);
  server.setEdid("DUMMY1", second);
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->displays.size(), 2u);
  EXPECT_EQ(arrangement->displays[0].vendor, 0x0610u);
  EXPECT_EQ(arrangement->displays[0].model, 0x9C42u);
  EXPECT_EQ(arrangement->displays[0].serial, 77u);
  EXPECT_EQ(arrangement->displays[0].edid, first);
  EXPECT_EQ(arrangement->displays[1].vendor, 0x10ACu);
  EXPECT_EQ(arrangement->displays[1].model, 0xA0B1u);
  EXPECT_EQ(arrangement->displays[1].serial, 0xDEADBEEFu);
  ASSERT_EQ(arrangement->services.size(), 2u);
  EXPECT_EQ(arrangement->services[0].vendor, 0x0610u);
  EXPECT_EQ(arrangement->services[0].product, 0x9C42u);
  EXPECT_EQ(arrangement->services[0].serial, 77u);
  EXPECT_EQ(arrangement->services[0].product_names, (Names{{"en_US", decodedName(first)}}));
  EXPECT_EQ(arrangement->services[1].product_names, (Names{{"en_US", decodedName(second)}}));
}

TEST_F(LiveEdids, FollowAReplacedMonitor) {
  server.setEdid("DUMMY0", makeEdid({.name = "Old Monitor"}));
  const auto before = desktop->arrangement();
  server.setEdid("DUMMY0", makeEdid({.name = "New Monitor"}));
  const auto after = desktop->arrangement();
  EXPECT_EQ(after->services.at(0).product_names, (Names{{"en_US", "New Monitor"}}));
  EXPECT_EQ(after->displays.at(0).number, before->displays.at(0).number);
  EXPECT_NE(after->displays.at(0).uuid, before->displays.at(0).uuid);
  server.removeEdid("DUMMY0");
  expectNoEdid(*desktop->arrangement());
}

TEST_F(LiveEdids, GiveServicesInTheServersOrder) {
  placeTwo();
  server.setEdid("DUMMY0", makeEdid({.name = "First"}));
  server.setEdid("DUMMY1", makeEdid({.name = "Second"}));
  server.makePrimary("DUMMY1");
  const auto arrangement = desktop->arrangement();
  EXPECT_EQ(arrangement->displays.at(0).connector, "DUMMY1");
  const auto monitors = server.monitors();
  ASSERT_EQ(arrangement->services.size(), monitors.size());
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    const std::string name = monitors[i].name == "DUMMY0" ? "First" : "Second";
    EXPECT_EQ(arrangement->services[i].product_names, (Names{{"en_US", name}}));
  }
}

TEST_F(LiveEdids, OfEqualMonitorsGiveDifferentLastingUuids) {
  placeTwo();
  server.setEdid("DUMMY0", makeEdid());
  server.setEdid("DUMMY1", makeEdid());
  const auto before = desktop->arrangement();
  ASSERT_EQ(before->displays.size(), 2u);
  EXPECT_NE(before->displays[0].uuid, before->displays[1].uuid);

  XorgServer restarted;
  restarted.place({{"DUMMY0", {1280, 1024, 0, 0}}, {"DUMMY1", {640, 480, 1280, 0}}});
  restarted.setEdid("DUMMY0", makeEdid());
  restarted.setEdid("DUMMY1", makeEdid());
  const auto after = liveDesktopOf(restarted)->arrangement();
  ASSERT_EQ(after->displays.size(), 2u);
  EXPECT_EQ(after->displays[0].uuid, before->displays[0].uuid);
  EXPECT_EQ(after->displays[1].uuid, before->displays[1].uuid);
}

TEST_F(LiveEdids, WithoutANameGiveAServiceWithoutNames) {
  server.setEdid("DUMMY0", makeEdid({.name = std::nullopt}));
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->services.size(), 1u);
  EXPECT_EQ(arrangement->services[0].product_names, Names{});
}

TEST_F(LiveEdids, WithoutASerialGiveAServiceWithoutOne) {
  server.setEdid("DUMMY0", makeEdid({.serial = 0}));
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->services.size(), 1u);
  EXPECT_EQ(arrangement->services[0].serial, std::nullopt);
  EXPECT_EQ(arrangement->displays.at(0).serial, 0u);
}

TEST_F(LiveEdids, AreIgnoredWhenMissingOrEmpty) {
  expectNoEdid(*desktop->arrangement());
  server.setEdid("DUMMY0", {});
  expectNoEdid(*desktop->arrangement());
}

TEST_F(LiveEdids, AreIgnoredWhenTruncated) {
  const EdidBytes whole = makeEdid();
  for (const std::size_t size : {1u, 7u, 8u, 9u, 17u, 54u, 90u, 126u, 127u}) {
    SCOPED_TRACE(size);
    server.setEdid("DUMMY0", EdidBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    expectNoEdid(*desktop->arrangement());
  }
}

TEST_F(LiveEdids, AreIgnoredWithAFlippedBit) {
  std::minstd_rand random(7);
  for (int i = 0; i < 64; ++i) {
    EdidBytes edid = makeEdid();
    const std::size_t bit = random() % (edid.size() * 8);
    SCOPED_TRACE(bit);
    edid[bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
    server.setEdid("DUMMY0", edid);
    expectNoEdid(*desktop->arrangement());
  }
}

TEST_F(LiveEdids, AreReadFromTheBaseBlockWhenHuge) {
  EdidBytes edid = makeEdid({.name = "Huge"});
  edid.resize(200000, 0xA5);
  server.setEdid("DUMMY0", edid);
  const auto arrangement = desktop->arrangement();
  ASSERT_EQ(arrangement->services.size(), 1u);
  EXPECT_EQ(arrangement->services[0].product_names, (Names{{"en_US", "Huge"}}));
  constexpr std::size_t kLargestEdid = 256 * 128;
  EXPECT_EQ(arrangement->displays[0].edid.size(), kLargestEdid);
  server.setEdid("DUMMY0", EdidBytes(200000, 0xFF));
  expectNoEdid(*desktop->arrangement());
}

TEST_F(LiveEdids, AreReadWithMissingExtensions) {
  EdidBytes edid = makeEdid({.name = "Liar"});
  edid[126] = 200;
  support::fixChecksum(edid);
  server.setEdid("DUMMY0", edid);
  EXPECT_EQ(desktop->arrangement()->services.size(), 1u);
  const EdidBytes with_extensions = makeEdid({.name = "Honest", .extensions = 3});
  server.setEdid("DUMMY0", with_extensions);
  EXPECT_EQ(desktop->arrangement()->services.size(), 1u);
  EXPECT_EQ(desktop->arrangement()->displays.at(0).edid, with_extensions);
}

}  // namespace
