#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "desktop/script/scripted.h"

namespace {

using namespace platform::desktop;
using testing::ElementsAre;
using testing::IsEmpty;

DeviceProfile displayProfile(std::uint8_t device, const char* path, bool is_default, bool is_current) {
  return {kDisplayDeviceClass, Uuid{device}, "Display", is_default, is_current, path};
}

std::vector<std::string> pathsOf(Desktop& desktop) {
  std::vector<std::string> paths;
  desktop.visitDeviceProfiles([&](const DeviceProfile& entry) {
    paths.push_back(entry.profile_path.value_or("none"));
    return true;
  });
  return paths;
}

TEST(ScriptedDesktop, RepeatsAWalkInOrder) {
  Script script;
  script.device_profiles = {displayProfile(1, "/a", true, true), displayProfile(2, "/b", true, true)};
  ScriptedDesktop desktop(script);
  EXPECT_THAT(pathsOf(desktop), ElementsAre("/a", "/b"));
  desktop.change([](Script& edited) { edited.device_walk.repeat = 2; });
  EXPECT_THAT(pathsOf(desktop), ElementsAre("/a", "/b", "/a", "/b"));
  desktop.change([](Script& edited) { edited.device_walk.repeat = 0; });
  EXPECT_THAT(pathsOf(desktop), IsEmpty());
}

TEST(ScriptedDesktop, EndsAWalkWhenTheVisitorReturnsFalse) {
  Script script;
  script.installed_profiles = {{"mntr", "A", "/a"}, {"mntr", "B", "/b"}};
  script.installed_walk.repeat = 2;
  ScriptedDesktop desktop(script);
  int visited = 0;
  desktop.visitInstalledProfiles([&](const InstalledProfile&) {
    ++visited;
    return false;
  });
  EXPECT_EQ(visited, 1);
}

TEST(ScriptedDesktop, DelaysAWalk) {
  Script script;
  script.device_profiles = {displayProfile(1, "/a", true, true)};
  script.device_walk.delay = std::chrono::milliseconds(50);
  ScriptedDesktop desktop(script);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(pathsOf(desktop), ElementsAre("/a"));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
}

TEST(ScriptedDesktop, ReleasesAHungWalkThatOutlivesTheDesktop) {
  Script script;
  script.device_profiles = {displayProfile(1, "/a", true, true)};
  std::promise<void> begun;
  script.device_walk.before = [&] { begun.set_value(); };
  script.device_walk.hang = true;
  auto desktop = std::make_unique<ScriptedDesktop>(script);
  std::atomic<int> visited = 0;
  std::thread walker([&visited, raw = desktop.get()] {
    raw->visitDeviceProfiles([&](const DeviceProfile&) {
      ++visited;
      return true;
    });
  });
  begun.get_future().wait();
  EXPECT_EQ(visited, 0);
  desktop->releaseWalks();
  desktop.reset();
  walker.join();
  EXPECT_EQ(visited, 1);
}

TEST(ScriptedDesktop, MakesAnAssignedFileTheOnlyDefaultAndCurrentProfile) {
  Script script;
  script.device_profiles = {displayProfile(1, "/other", false, true), displayProfile(1, "/old", true, false),
                            displayProfile(2, "/b", true, true)};
  ScriptedDesktop desktop(script);
  EXPECT_TRUE(desktop.setDeviceProfile(Uuid{1}, "/new"));
  EXPECT_THAT(pathsOf(desktop), ElementsAre("/other", "/new", "/b"));
  std::vector<bool> in_use;
  desktop.visitDeviceProfiles([&](const DeviceProfile& entry) {
    in_use.push_back(entry.is_default == true && entry.is_current == true);
    return true;
  });
  EXPECT_THAT(in_use, ElementsAre(false, true, true));
}

TEST(ScriptedDesktop, RefusesAssignmentsToUnknownDevicesOrByTheScript) {
  Script script;
  script.device_profiles = {displayProfile(1, "/a", true, true)};
  ScriptedDesktop desktop(script);
  EXPECT_FALSE(desktop.setDeviceProfile(Uuid{9}, "/new"));
  desktop.change([](Script& edited) { edited.accepts_profiles = false; });
  EXPECT_FALSE(desktop.setDeviceProfile(Uuid{1}, "/new"));
  EXPECT_THAT(pathsOf(desktop), ElementsAre("/a"));
}

TEST(ScriptedDesktop, PublishesAChangeAsANewArrangement) {
  ScriptedDesktop desktop;
  const auto before = desktop.arrangement();
  desktop.change([](Script& edited) { edited.arrangement.displays.resize(1); });
  EXPECT_TRUE(before->displays.empty());
  EXPECT_EQ(desktop.arrangement()->displays.size(), 1u);
}

}  // namespace
