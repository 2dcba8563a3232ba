#include "desktop/model/connector.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "desktop/model/uuid.h"
#include "support/edid_maker.h"
#include "support/temporary_folder.h"

namespace {

using platform::desktop::commonConnectorName;
using platform::desktop::outputUuid;
using platform::desktop::readConnectorEdid;
using platform::desktop::readOnlyEdid;
using support::EdidBytes;
using support::makeEdid;

class ConnectorEdid : public testing::Test {
 protected:
  void write(const std::string& entry, const EdidBytes& edid) const {
    folder.write(entry + "/edid", {reinterpret_cast<const char*>(edid.data()), edid.size()});
  }
  EdidBytes read(const std::string& connector, const std::string& product = {}) const {
    return readConnectorEdid(folder.path(), connector, product).bytes;
  }

  const support::TemporaryFolder folder;
  const EdidBytes first = makeEdid({.serial = 1, .name = "First", .extensions = 2});
  const EdidBytes second = makeEdid({.serial = 2, .name = "Second"});
};

TEST_F(ConnectorEdid, IsThatOfTheConnectorWithThisName) {
  write("card0-DP-1", first);
  write("card0-DP-11", second);
  write("card0-eDP-1", {});
  EXPECT_EQ(read("DP-1"), first);
  EXPECT_EQ(read("DP-11"), second);
  EXPECT_EQ(read("eDP-1"), EdidBytes());
  EXPECT_EQ(readConnectorEdid(folder.path(), "eDP-1", {}).path, folder.path("card0-eDP-1/edid"));
  for (const char* const none : {"", "DP", "DP-2", "1", "card0-DP-1", "../card0-DP-1", "HEADLESS-1"}) {
    EXPECT_EQ(read(none), EdidBytes()) << none;
    EXPECT_EQ(readConnectorEdid(folder.path(), none, {}).path, "") << none;
  }
}

TEST_F(ConnectorEdid, IsFoundByTheNamesOfXAndLinux) {
  write("card0-HDMI-A-2", first);
  EXPECT_EQ(read("HDMI-A-2"), first);
  EXPECT_EQ(read("HDMI-2"), first);
}

TEST_F(ConnectorEdid, IsThatOfTheCardWithTheMonitor) {
  write("card0-DP-1", {});
  write("card1-DP-1", second);
  EXPECT_EQ(read("DP-1"), second);
}

TEST_F(ConnectorEdid, IsChosenByTheProductNameBetweenTwoMonitors) {
  write("card0-DP-1", first);
  write("card1-DP-1", second);
  EXPECT_EQ(read("DP-1", "Second"), second);
  EXPECT_EQ(read("DP-1", "First"), first);
  EXPECT_EQ(read("DP-1", "Third"), EdidBytes()) << "a wrong EDID would be worse than none";
}

TEST_F(ConnectorEdid, IsTheOnlyOneOfOneMonitor) {
  EXPECT_EQ(readOnlyEdid(folder.path()).bytes, EdidBytes());
  write("card0-DP-1", {});
  write("card0-HDMI-A-1", second);
  EXPECT_EQ(readOnlyEdid(folder.path()).bytes, second);
  EXPECT_EQ(readOnlyEdid(folder.path()).connector, "HDMI-A-1");
  write("card0-DP-1", first);
  EXPECT_EQ(readOnlyEdid(folder.path()).bytes, EdidBytes()) << "of two";
}

TEST_F(ConnectorEdid, IsReadWithinBounds) {
  write("card0-DP-1", EdidBytes(1 << 20, 0xAA));
  EXPECT_LE(read("DP-1").size(), std::size_t{256} * 128);
  std::filesystem::create_directories(folder.path("card0-DP-2"));
  ASSERT_EQ(mkfifo(folder.path("card0-DP-2/edid").c_str(), 0600), 0);
  EXPECT_EQ(read("DP-2"), EdidBytes()) << "a pipe is not read";
  EXPECT_EQ(readConnectorEdid("/nowhere", "DP-1", {}).bytes, EdidBytes());
}

TEST(ConnectorNames, DifferForHdmiOnly) {
  EXPECT_EQ(commonConnectorName("HDMI-A-1"), "HDMI-1");
  EXPECT_EQ(commonConnectorName("HDMI-1"), "HDMI-1");
  EXPECT_EQ(commonConnectorName("HDMI-B-1"), "HDMI-B-1");
  EXPECT_EQ(commonConnectorName("DP-1"), "DP-1");
  EXPECT_EQ(commonConnectorName(""), "");
  const auto edid = makeEdid();
  EXPECT_EQ(outputUuid(edid, "HDMI-A-1"), outputUuid(edid, "HDMI-1"));
  EXPECT_NE(outputUuid(edid, "HDMI-A-1"), outputUuid(edid, "HDMI-2"));
}

}  // namespace
