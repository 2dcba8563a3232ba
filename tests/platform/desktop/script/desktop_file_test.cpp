#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "desktop/script/scripted.h"
#include "support/temporary_folder.h"

namespace {

using namespace platform::desktop;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

Script read(const std::string& json) { return readScript(support::TemporaryFolder().write("desktop.json", json)); }

Uuid uuid(const char* hex) {
  Uuid result{};
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i] = static_cast<std::uint8_t>(std::stoi(std::string(hex + 2 * i, 2), nullptr, 16));
  }
  return result;
}

TEST(DesktopFile, DescribesNothingWhenEmpty) {
  const Script script = read("{}");
  EXPECT_THAT(script.arrangement.displays, IsEmpty());
  EXPECT_THAT(script.arrangement.screens, IsEmpty());
  EXPECT_THAT(script.arrangement.services, IsEmpty());
  EXPECT_EQ(script.arrangement.main_screen, std::nullopt);
  EXPECT_THAT(script.device_profiles, IsEmpty());
  EXPECT_THAT(script.installed_profiles, IsEmpty());
  EXPECT_TRUE(script.accepts_profiles);
  EXPECT_EQ(script.device_walk.delay.count(), 0);
  EXPECT_FALSE(script.device_walk.hang);
  EXPECT_EQ(script.device_walk.repeat, 1u);
}

TEST(DesktopFile, ReadsEveryMemberOfADisplay) {
  const Script script = read(R"({"displays": [{"number": 4294967295, "bounds": [-1440.5, 0.1, 1e3, 900],
      "uuid": "37d8832A-2D66-02CA-B9F7-8F30A301B230", "vendor": 4268, "model": 65535, "serial": 4294967295,
      "connector": "DP-1"}]})");
  ASSERT_THAT(script.arrangement.displays, SizeIs(1));
  const Display& display = script.arrangement.displays[0];
  EXPECT_EQ(display.number, 4294967295u);
  EXPECT_EQ(display.bounds, (Rect{-1440.5, 0.1, 1000, 900}));
  EXPECT_EQ(display.uuid, uuid("37D8832A2D6602CAB9F78F30A301B230"));
  EXPECT_EQ(display.vendor, 4268u);
  EXPECT_EQ(display.model, 65535u);
  EXPECT_EQ(display.serial, 4294967295u);
  EXPECT_EQ(display.connector, "DP-1");
}

TEST(DesktopFile, ReadsNumbersToTheLastBit) {
  const Script script = read(R"({"screens": [{"frame": [0.30000000000000004, -0.0, 5e-324, 1.7976931348623157e308],
      "scale": 1.3333333333333333}]})");
  ASSERT_THAT(script.arrangement.screens, SizeIs(1));
  const Rect frame = script.arrangement.screens[0].frame.value();
  EXPECT_EQ(frame.x, 0.1 + 0.2);
  EXPECT_TRUE(std::signbit(frame.y));
  EXPECT_EQ(frame.width, std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(frame.height, std::numeric_limits<double>::max());
  EXPECT_EQ(script.arrangement.screens[0].backing_scale, 4.0 / 3.0);
}

TEST(DesktopFile, DerivesAMissingUuidFromTheNumber) {
  const Script script = read(R"({"displays": [{"number": 258, "bounds": [0, 0, 1, 1]}]})");
  EXPECT_EQ(script.arrangement.displays.at(0).uuid, uuid("00000000000040008000000000000102"));
}

TEST(DesktopFile, AllowsADisplayWithoutUuid) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1, 1], "uuid": null}]})");
  EXPECT_EQ(script.arrangement.displays.at(0).uuid, std::nullopt);
}

TEST(DesktopFile, DerivesScreensFromTheLowerLeftCornerOfTheMainDisplay) {
  const Script script = read(R"({"displays": [
      {"number": 1, "bounds": [0, 0, 1440, 900], "scale": 2},
      {"number": 2, "bounds": [-2560, -540, 2560, 1440]},
      {"number": 3, "bounds": [1440, 0, 1920, 1080], "scale": 1.5}]})");
  const Arrangement& arrangement = script.arrangement;
  ASSERT_THAT(arrangement.screens, SizeIs(3));
  EXPECT_EQ(arrangement.screens[0].frame, (Rect{0, 0, 1440, 900}));
  EXPECT_EQ(arrangement.screens[1].frame, (Rect{-2560, 0, 2560, 1440}));
  EXPECT_EQ(arrangement.screens[2].frame, (Rect{1440, -180, 1920, 1080}));
  EXPECT_EQ(arrangement.screens[0].backing_scale, 2);
  EXPECT_EQ(arrangement.screens[1].backing_scale, 1);
  EXPECT_EQ(arrangement.screens[2].backing_scale, 1.5);
  EXPECT_EQ(arrangement.main_screen, 0u);
}

TEST(DesktopFile, ReadsScreensUnchanged) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 30, 1440, 900]}],
      "screens": [{}, {"frame": null, "scale": 0}, {"frame": [0, 0, 1440, 900]}], "main_screen": 2})");
  const Arrangement& arrangement = script.arrangement;
  ASSERT_THAT(arrangement.screens, SizeIs(3));
  EXPECT_EQ(arrangement.screens[0].frame, std::nullopt);
  EXPECT_EQ(arrangement.screens[1].frame, std::nullopt);
  EXPECT_EQ(arrangement.screens[1].backing_scale, 0);
  EXPECT_EQ(arrangement.screens[2].frame, (Rect{0, 0, 1440, 900}));
  EXPECT_EQ(arrangement.main_screen, 2u);
}

TEST(DesktopFile, AllowsScreensWithoutAMainScreen) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900]}], "main_screen": null})");
  EXPECT_THAT(script.arrangement.screens, SizeIs(1));
  EXPECT_EQ(script.arrangement.main_screen, std::nullopt);
}

TEST(DesktopFile, AllowsDisplaysWithoutScreens) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1440, 900]}], "screens": []})");
  EXPECT_THAT(script.arrangement.screens, IsEmpty());
  EXPECT_EQ(script.arrangement.main_screen, std::nullopt);
}

TEST(DesktopFile, DerivesServicesFromTheDisplays) {
  const Script script = read(R"({"displays": [
      {"number": 1, "bounds": [0, 0, 1, 1], "vendor": 1, "model": 2, "serial": 3, "name": "Écran"},
      {"number": 2, "bounds": [0, 0, 1, 1]}]})");
  ASSERT_THAT(script.arrangement.services, SizeIs(2));
  const DisplayService& full = script.arrangement.services[0];
  EXPECT_TRUE(full.has_info);
  EXPECT_EQ(full.vendor, 1u);
  EXPECT_EQ(full.product, 2u);
  EXPECT_EQ(full.serial, 3u);
  EXPECT_THAT(full.product_names.value(), ElementsAre(testing::Pair("en", "Écran")));
  const DisplayService& bare = script.arrangement.services[1];
  EXPECT_EQ(bare.vendor, 0u);
  EXPECT_EQ(bare.product, 0u);
  EXPECT_EQ(bare.serial, std::nullopt);
  EXPECT_EQ(bare.product_names, std::nullopt);
}

TEST(DesktopFile, ReadsServicesUnchanged) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1, 1]}], "services": [
      {}, {"info": false}, {"vendor": 1, "product": 2, "serial": 3, "names": {"z": "Last", "a": ""}}, {"names": {}}]})");
  const auto& services = script.arrangement.services;
  ASSERT_THAT(services, SizeIs(4));
  EXPECT_TRUE(services[0].has_info);
  EXPECT_EQ(services[0].vendor, std::nullopt);
  EXPECT_EQ(services[0].product, std::nullopt);
  EXPECT_EQ(services[0].product_names, std::nullopt);
  EXPECT_FALSE(services[1].has_info);
  EXPECT_EQ(services[2].vendor, 1u);
  EXPECT_EQ(services[2].product, 2u);
  EXPECT_EQ(services[2].serial, 3u);
  EXPECT_THAT(services[2].product_names.value(), ElementsAre(testing::Pair("z", "Last"), testing::Pair("a", "")));
  EXPECT_THAT(services[3].product_names.value(), IsEmpty());
}

TEST(DesktopFile, MakesTheFirstProfileOfADisplayItsDefaultAndCurrentOne) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1, 1], "name": "Screen",
      "uuid": "37D8832A-2D66-02CA-B9F7-8F30A301B230", "profiles": ["/a.icc", "/b.icc"]}]})");
  ASSERT_THAT(script.device_profiles, SizeIs(2));
  const DeviceProfile& first = script.device_profiles[0];
  EXPECT_EQ(first.device_class, kDisplayDeviceClass);
  EXPECT_EQ(first.device_id, uuid("37D8832A2D6602CAB9F78F30A301B230"));
  EXPECT_EQ(first.description, "Screen");
  EXPECT_EQ(first.is_default, true);
  EXPECT_EQ(first.is_current, true);
  EXPECT_EQ(first.profile_path, "/a.icc");
  const DeviceProfile& second = script.device_profiles[1];
  EXPECT_EQ(second.is_default, false);
  EXPECT_EQ(second.is_current, false);
  EXPECT_EQ(second.profile_path, "/b.icc");
}

TEST(DesktopFile, ReadsTheFlagsOfADisplaysProfile) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1, 1],
      "profiles": [{"path": "/a.icc", "current": false}, {"path": "/b.icc", "current": true}]}]})");
  ASSERT_THAT(script.device_profiles, SizeIs(2));
  EXPECT_EQ(script.device_profiles[0].is_default, true);
  EXPECT_EQ(script.device_profiles[0].is_current, false);
  EXPECT_EQ(script.device_profiles[1].is_default, false);
  EXPECT_EQ(script.device_profiles[1].is_current, true);
  EXPECT_EQ(script.device_profiles[0].description, std::nullopt);
}

TEST(DesktopFile, ListsDeviceProfilesAfterThoseOfTheDisplays) {
  const Script script = read(R"({"displays": [{"number": 1, "bounds": [0, 0, 1, 1], "profiles": ["/a.icc"]}],
      "device_profiles": [{}, {"class": "prtr", "device": "37D8832A-2D66-02CA-B9F7-8F30A301B230",
      "description": "Printer", "default": false, "current": true, "path": "/p.icc"}]})");
  ASSERT_THAT(script.device_profiles, SizeIs(3));
  EXPECT_EQ(script.device_profiles[0].profile_path, "/a.icc");
  const DeviceProfile& bare = script.device_profiles[1];
  EXPECT_EQ(bare.device_class, std::nullopt);
  EXPECT_EQ(bare.device_id, std::nullopt);
  EXPECT_EQ(bare.description, std::nullopt);
  EXPECT_EQ(bare.is_default, std::nullopt);
  EXPECT_EQ(bare.is_current, std::nullopt);
  EXPECT_EQ(bare.profile_path, std::nullopt);
  const DeviceProfile& full = script.device_profiles[2];
  EXPECT_EQ(full.device_class, "prtr");
  EXPECT_EQ(full.device_id, uuid("37D8832A2D6602CAB9F78F30A301B230"));
  EXPECT_EQ(full.description, "Printer");
  EXPECT_EQ(full.is_default, false);
  EXPECT_EQ(full.is_current, true);
  EXPECT_EQ(full.profile_path, "/p.icc");
}

TEST(DesktopFile, NamesAnInstalledProfileAfterItsFile) {
  const Script script = read(R"({"installed_profiles": ["/dir/Wide Gamut.icc", {}, {"class": "spac",
      "description": "Space", "path": "/s.icc"}]})");
  ASSERT_THAT(script.installed_profiles, SizeIs(3));
  EXPECT_EQ(script.installed_profiles[0].profile_class, "mntr");
  EXPECT_EQ(script.installed_profiles[0].description, "Wide Gamut");
  EXPECT_EQ(script.installed_profiles[0].path, "/dir/Wide Gamut.icc");
  EXPECT_EQ(script.installed_profiles[1].profile_class, std::nullopt);
  EXPECT_EQ(script.installed_profiles[1].description, std::nullopt);
  EXPECT_EQ(script.installed_profiles[1].path, std::nullopt);
  EXPECT_EQ(script.installed_profiles[2].profile_class, "spac");
  EXPECT_EQ(script.installed_profiles[2].description, "Space");
  EXPECT_EQ(script.installed_profiles[2].path, "/s.icc");
}

TEST(DesktopFile, ResolvesPathsAgainstItsFolder) {
  const support::TemporaryFolder folder;
  const Script script = readScript(
      folder.write("desktop.json", R"({"installed_profiles": ["profiles/a.icc", "../b.icc", "/plain/../c.icc"]})"));
  ASSERT_THAT(script.installed_profiles, SizeIs(3));
  EXPECT_EQ(script.installed_profiles[0].path, folder.path("profiles/a.icc"));
  EXPECT_EQ(script.installed_profiles[1].path, (std::filesystem::path(folder.path()).parent_path() / "b.icc").string());
  EXPECT_EQ(script.installed_profiles[2].path, "/plain/../c.icc");
}

TEST(DesktopFile, ReadsWalks) {
  const Script script = read(R"({"device_walk": {"delay_ms": 1500, "hang": true, "repeat": 3},
      "installed_walk": {"repeat": 0}, "accepts_profiles": false})");
  EXPECT_EQ(script.device_walk.delay.count(), 1500);
  EXPECT_TRUE(script.device_walk.hang);
  EXPECT_EQ(script.device_walk.repeat, 3u);
  EXPECT_EQ(script.installed_walk.repeat, 0u);
  EXPECT_FALSE(script.installed_walk.hang);
  EXPECT_FALSE(script.accepts_profiles);
}

TEST(DesktopFile, ReadsTextByteForByte) {
  const Script script =
      read("{\"displays\": [{\"number\": 1, \"bounds\": [0,0,1,1], \"name\": \"a\\u0000\\u00e9\xF0\x9F\x96\xA5\"}]}");
  EXPECT_EQ(script.arrangement.services.at(0).product_names.value().at(0).second,
            std::string("a\0\xC3\xA9\xF0\x9F\x96\xA5", 8));
}

}  // namespace
