// The methods on the process's own desktop, compared with the frameworks' results in this program: on a Mac
// the real one, elsewhere the example that comes with the project.
#include <CoreGraphics/CoreGraphics.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "support/fresh_plugin.h"

namespace {

class AnyDesktop : public testing::Test {
 protected:
  AnyDesktop() : plugin(support::loadFreshPlugin(host)) {}

  static std::vector<CGDirectDisplayID> activeDisplays() {
    std::vector<CGDirectDisplayID> displays(64);
    std::uint32_t count = 0;
    EXPECT_EQ(CGGetActiveDisplayList(static_cast<std::uint32_t>(displays.size()), displays.data(), &count),
              kCGErrorSuccess);
    displays.resize(count);
    return displays;
  }

  std::vector<std::string> installedProfiles() {
    const auto array = plugin.call("GetInstalledProfilePathsArray").result;
    std::vector<std::string> paths;
    for (const devhost::Value& path : array.elements()) {
      paths.push_back(path.text());
    }
    return paths;
  }

  devhost::Host host;
  devhost::Plugin plugin;
};

TEST_F(AnyDesktop, GetIndexFollowsCoreGraphics) {
  const auto displays = activeDisplays();
  ASSERT_THAT(displays, testing::Not(testing::IsEmpty()));
  for (std::size_t index = 0; index < displays.size(); ++index) {
    EXPECT_EQ(plugin.call("GetIndex", {displays[index]}).result.unsignedNumber(), index);
  }
}

TEST_F(AnyDesktop, DisplayZeroIsUnknown) {
  EXPECT_EQ(plugin.call("GetIndex", {0}).result.unsignedNumber(), 4099018739U);
}

TEST_F(AnyDesktop, GetRectMatchesCoreGraphics) {
  for (const CGDirectDisplayID display : activeDisplays()) {
    const CGRect bounds = CGDisplayBounds(display);
    const auto found = plugin.call("GetCGRect", {display});
    EXPECT_EQ(found["x"].real(), bounds.origin.x);
    EXPECT_EQ(found["y"].real(), bounds.origin.y);
    EXPECT_EQ(found["width"].real(), bounds.size.width);
    EXPECT_EQ(found["height"].real(), bounds.size.height);
  }
}

TEST_F(AnyDesktop, EveryDisplayHasAScaleAndAName) {
  for (const CGDirectDisplayID display : activeDisplays()) {
    EXPECT_GE(plugin.call("GetScale", {display}).result.real(), 1.0);
    EXPECT_THAT(plugin.call("GetName", {display})["name"].text(), testing::Not(testing::IsEmpty()));
  }
}

TEST_F(AnyDesktop, ListsReadableProfiles) {
  const auto paths = installedProfiles();
  ASSERT_THAT(paths, testing::Not(testing::IsEmpty()));
  for (const std::string& path : paths) {
    EXPECT_TRUE(plugin.call("ICCTagExists", {path, "desc"}).result.boolean()) << path;
    EXPECT_FALSE(plugin.call("ICCTagExists", {path, "none"}).result.boolean()) << path;
  }
}

TEST_F(AnyDesktop, RaisesOneEventForEachInstalledProfile) {
  std::vector<std::string> called;
  auto object = host.makeObject("Listener");
  host.addMethod(*object, "DisplayProfileFound( name as String, path as String )",
                 [&called](devhost::Object&, devhost::Values& arguments) -> devhost::Value {
                   called.push_back(arguments[1].text());
                   return {};
                 });
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_TRUE(std::is_sorted(called.begin(), called.end()));
  EXPECT_THAT(called, testing::UnorderedElementsAreArray(installedProfiles()));
}

}  // namespace
