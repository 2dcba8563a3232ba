#include "desktop/colord/colord_matching.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "platform/desktop/colord/displays.h"

namespace colord_test {
namespace {

using platform::desktop::ColordDevice;
using platform::desktop::ColordRegistration;
using platform::desktop::haveOwnDevices;
using platform::desktop::matchDevices;
using platform::desktop::namedAfter;
using platform::desktop::registrationFor;
using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

constexpr std::nullopt_t kNone = std::nullopt;

ColordDevice device(const std::string& id, const std::string& connector, const std::string& edid_md5 = {}) {
  ColordDevice made;
  made.id = id;
  made.object_path = "/" + id;
  made.connector = connector;
  made.edid_md5 = edid_md5;
  made.physical = true;
  return made;
}

std::map<std::string, std::string> properties(const ColordRegistration& registration) {
  return {registration.properties.begin(), registration.properties.end()};
}

TEST(MatchDevices, PairsByConnectorAndEdidInAnyOrder) {
  const std::vector<Display> displays{makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "DP-2", secondEdid())};
  const std::vector<ColordDevice> devices{device("b", "DP-2", md5(secondEdid())),
                                          device("a", "DP-1", md5(firstEdid()))};
  EXPECT_THAT(matchDevices(displays, devices), ElementsAre(Optional(1), Optional(0)));
}

TEST(MatchDevices, TakesTheConnectorWhereTheDeviceHasNoChecksum) {
  EXPECT_THAT(matchDevices({makeDisplay(1, "DP-1", firstEdid())}, {device("a", "HDMI-1"), device("b", "DP-1")}),
              ElementsAre(Optional(1)));
}

TEST(MatchDevices, TakesTheConnectorWhereTheDisplayHasNoEdid) {
  EXPECT_THAT(matchDevices({makeDisplay(1, "VGA-1", {})}, {device("a", "VGA-1", md5(firstEdid()))}),
              ElementsAre(Optional(0)));
}

TEST(MatchDevices, TakesTheConnectorUnderItsNameOfXAndOfWayland) {
  EXPECT_THAT(matchDevices({makeDisplay(1, "HDMI-A-1", {})}, {device("a", "HDMI-2"), device("b", "HDMI-1")}),
              ElementsAre(Optional(1)));
  EXPECT_THAT(matchDevices({makeDisplay(1, "HDMI-1", {})}, {device("a", "HDMI-A-2"), device("b", "HDMI-A-1")}),
              ElementsAre(Optional(1)));
}

TEST(MatchDevices, PrefersADeviceWithoutChecksumWhereTheDisplayHasNoEdid) {
  ColordDevice monitors = device("a", "VGA-1", md5(firstEdid()));
  monitors.modified = 20;
  EXPECT_THAT(matchDevices({makeDisplay(1, "VGA-1", {})}, {monitors, device("b", "VGA-1")}), ElementsAre(Optional(1)));
}

TEST(MatchDevices, IgnoresAnotherMonitorsDeviceAtTheSameConnector) {
  EXPECT_THAT(matchDevices({makeDisplay(1, "DP-1", firstEdid())}, {device("a", "DP-1", md5(secondEdid()))}),
              ElementsAre(Eq(kNone)));
}

TEST(MatchDevices, FollowsAMonitorToAnotherConnector) {
  const std::vector<Display> swapped{makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "DP-2", secondEdid())};
  EXPECT_THAT(matchDevices(swapped, {device("a", "DP-2", md5(firstEdid())), device("b", "DP-1", md5(secondEdid()))}),
              ElementsAre(Optional(0), Optional(1)));
}

TEST(MatchDevices, TellsIdenticalMonitorsApartByConnector) {
  const std::vector<Display> displays{makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "DP-2", firstEdid())};
  EXPECT_THAT(matchDevices(displays, {device("b", "DP-2", md5(firstEdid())), device("a", "DP-1", md5(firstEdid()))}),
              ElementsAre(Optional(1), Optional(0)));
}

TEST(MatchDevices, GivesOneDeviceOfTwoIdenticalMonitorsToOneOnly) {
  const std::vector<Display> displays{makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "DP-2", firstEdid())};
  EXPECT_THAT(matchDevices(displays, {device("a", "DP-2", md5(firstEdid()))}), ElementsAre(Eq(kNone), Optional(0)));
}

TEST(MatchDevices, FallsBackToModelAndSerialNumber) {
  ColordDevice old = device("a", "");
  old.model = "DELL U2412M";
  old.serial = "1502";
  EXPECT_THAT(matchDevices({makeDisplay(1, "DP-1", firstEdid())}, {old}), ElementsAre(Optional(0)));
  old.serial = "other";
  EXPECT_THAT(matchDevices({makeDisplay(1, "DP-1", firstEdid())}, {old}), ElementsAre(Eq(kNone)));
}

TEST(MatchDevices, PrefersARegisteredDeviceThenTheOneChangedLast) {
  const Display display = makeDisplay(1, "DP-1", firstEdid());
  ColordDevice remembered = device("a", "DP-1", md5(firstEdid()));
  remembered.physical = false;
  remembered.modified = 30;
  ColordDevice older = device("b", "DP-1", md5(firstEdid()));
  older.modified = 10;
  ColordDevice newer = device("c", "DP-1", md5(firstEdid()));
  newer.modified = 20;
  EXPECT_THAT(matchDevices({display}, {remembered, older, newer}), ElementsAre(Optional(2)));
}

TEST(MatchDevices, IgnoresEmptyConnectors) {
  EXPECT_THAT(matchDevices({makeDisplay(1, "", {})}, {device("a", "")}), ElementsAre(Eq(kNone)));
}

TEST(MatchDevices, ReturnsNothingForNoDisplaysOrDevices) {
  EXPECT_THAT(matchDevices({}, {device("a", "DP-1")}), ElementsAre());
  EXPECT_THAT(matchDevices({makeDisplay(1, "DP-1", firstEdid())}, {}), ElementsAre(Eq(kNone)));
}

TEST(NamedAfter, FindsTheConnectorOrTheMonitorInAPath) {
  const auto named = namedAfter({makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "VGA-1", {})});
  EXPECT_TRUE(named("/devices/xrandr_Dell_DELL_U2412M_1502_user_1000"));
  EXPECT_TRUE(named("/devices/xrandr_DP_1"));
  EXPECT_TRUE(named("/devices/xrandr_VGA_1"));
  EXPECT_FALSE(named("/devices/xrandr_Dell_DELL_U2413_1502"));
  EXPECT_TRUE(namedAfter({makeDisplay(1, "HDMI-A-1", {})})("/devices/xrandr_HDMI_1"));
  EXPECT_FALSE(named("/devices/xrandr_DP_2"));
  EXPECT_FALSE(namedAfter({makeDisplay(1, "", {})})("/devices/xrandr"));
}

TEST(HaveOwnDevices, RequiresTheConnectorAndTheEdidOfEachDisplay) {
  const std::vector<Display> displays{makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "VGA-1", {})};
  const ColordDevice first = device("a", "DP-1", md5(firstEdid()));
  const ColordDevice second = device("b", "VGA-1");
  EXPECT_TRUE(haveOwnDevices(displays, {second, first}));
  EXPECT_FALSE(haveOwnDevices(displays, {first}));
  EXPECT_FALSE(haveOwnDevices(displays, {first, device("b", "VGA-1", md5(firstEdid()))}));
  EXPECT_FALSE(haveOwnDevices(displays, {second, device("a", "DP-1")}));
  EXPECT_FALSE(haveOwnDevices(displays, {second, device("a", "DP-2", md5(firstEdid()))}));
  EXPECT_TRUE(haveOwnDevices({}, {}));
}

TEST(RegistrationFor, NamesTheMonitorAsColordDoes) {
  const auto registration = registrationFor({makeDisplay(1, "DP-1", firstEdid())}, 0, {});
  const auto values = properties(registration);
  EXPECT_EQ(values.at("Kind"), "display");
  EXPECT_EQ(values.at("Mode"), "physical");
  EXPECT_EQ(values.at("Colorspace"), "rgb");
  EXPECT_EQ(values.at("Model"), "DELL U2412M");
  EXPECT_EQ(values.at("Serial"), "1502");
  EXPECT_EQ(values.at("XRANDR_name"), "DP-1");
  EXPECT_EQ(values.at("OutputEdidMd5"), md5(firstEdid()));
  EXPECT_EQ(values.at("OutputPriority"), "primary");
  EXPECT_EQ(values.count("Embedded"), 0U);
  const std::string vendor = values.count("Vendor") == 0 ? "" : "-" + values.at("Vendor");
  EXPECT_EQ(registration.id, "xrandr" + vendor + "-DELL U2412M-1502");
}

TEST(RegistrationFor, NamesADisplayWithoutEdidByItsConnector) {
  const auto registration = registrationFor({makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "VGA-1", {})}, 1, {});
  EXPECT_EQ(registration.id, "xrandr-VGA-1");
  const auto values = properties(registration);
  EXPECT_EQ(values.count("OutputEdidMd5"), 0U);
  EXPECT_EQ(values.count("Model"), 0U);
  EXPECT_EQ(values.at("OutputPriority"), "secondary");
}

TEST(RegistrationFor, UsesOnlyTheChecksumOfAnInvalidEdid) {
  const std::vector<std::uint8_t> junk(128, 0x55);
  const auto registration = registrationFor({makeDisplay(1, "DP-1", junk)}, 0, {});
  EXPECT_EQ(registration.id, "xrandr-DP-1");
  EXPECT_EQ(properties(registration).at("OutputEdidMd5"), md5(junk));
  EXPECT_EQ(registrationFor({makeDisplay(1, "DP-1", {1, 2, 3})}, 0, {}).id, "xrandr-DP-1");
}

TEST(RegistrationFor, NamesIdenticalMonitorsByTheirConnectors) {
  const std::vector<Display> displays{makeDisplay(1, "DP-1", firstEdid()), makeDisplay(2, "DP-2", firstEdid())};
  EXPECT_EQ(registrationFor(displays, 0, {}).id, "xrandr-DP-1");
  EXPECT_EQ(registrationFor(displays, 1, {}).id, "xrandr-DP-2");
}

TEST(RegistrationFor, AvoidsTakenIds) {
  const std::vector<Display> displays{makeDisplay(1, "DP-1", firstEdid())};
  const std::string usual = registrationFor(displays, 0, {}).id;
  EXPECT_EQ(registrationFor(displays, 0, {device(usual, "DP-7")}).id, "xrandr-DP-1");
  EXPECT_EQ(registrationFor(displays, 0, {device(usual, "DP-7"), device("xrandr-DP-1", "DP-8")}).id, "xrandr-DP-1-2");
}

TEST(RegistrationFor, MarksABuiltInPanelAsEmbedded) {
  EXPECT_EQ(properties(registrationFor({makeDisplay(1, "eDP-1", firstEdid())}, 0, {})).count("Embedded"), 1U);
  EXPECT_EQ(properties(registrationFor({makeDisplay(1, "LVDS1", {})}, 0, {})).count("Embedded"), 1U);
}

}  // namespace
}  // namespace colord_test
