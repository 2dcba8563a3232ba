// A host with a fresh plugin, on a scripted desktop of three displays and four installed profiles.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "devhost/entries/host.h"
#include "support/fresh_plugin.h"
#include "support/scripted.h"

namespace contract {

using platform::desktop::DeviceProfile;
using platform::desktop::InstalledProfile;
using platform::desktop::Script;

inline DeviceProfile deviceProfile(std::uint32_t display, const std::string& path, bool is_default, bool is_current) {
  return {.device_class = platform::desktop::kDisplayDeviceClass,
          .device_id = support::uuid(static_cast<std::uint8_t>(display)),
          .description = "Device " + std::to_string(display),
          .is_default = is_default,
          .is_current = is_current,
          .profile_path = path};
}

inline InstalledProfile installed(const std::string& path, const std::string& name,
                                  const std::string& profile_class = "mntr") {
  return {profile_class, name, path};
}

/// Display `number` with a service of its own that names it `name`.
inline void addDisplay(Script& script, std::uint32_t number, platform::desktop::Rect bounds, const std::string& name) {
  auto display = support::display(number, bounds);
  display.vendor = 0x10AC;
  display.model = number;
  display.serial = number * 10;
  script.arrangement.displays.push_back(display);
  script.arrangement.services.push_back({true, display.vendor, display.model, display.serial, {{{"en", name}}}});
}

inline Script threeDisplays() {
  Script script;
  addDisplay(script, 1, {0, 0, 1440, 900}, "Notebook");
  addDisplay(script, 2, {-1440.5, 0, 1440, 900}, "Größe 27″");
  addDisplay(script, 3, {1440, -100, 1920, 1080}, "Third");
  script.arrangement.screens = {support::screen({0, 0, 1440, 900}, 2), support::screen({-1440.5, 0, 1440, 900}, 1),
                                support::screen({1440, -80, 1920, 1080}, 1.5)};
  script.arrangement.main_screen = 0;
  script.device_profiles = {deviceProfile(1, "/a.icc", true, true), deviceProfile(1, "/b.icc", false, false),
                            deviceProfile(2, "/c.icc", true, true), deviceProfile(3, "/not installed.icc", true, true)};
  script.installed_profiles = {installed("/c.icc", "B"), installed("/a.icc", "B"), installed("/b.icc", "   A"),
                               installed("/printer.icc", "P", "prtr")};
  return script;
}

class MethodTest : public testing::Test {
 protected:
  using Events = std::vector<std::pair<std::string, std::string>>;  // name, path

  explicit MethodTest(Script script = threeDisplays())
      : session(std::move(script)), plugin(support::loadFreshPlugin(host)) {}

  /// An object whose event handler appends to `events`. The test keeps it: the plugin takes no reference on its object.
  devhost::Ref<devhost::Object> listener(Events& events) {
    auto object = host.makeObject("Listener");
    host.addMethod(*object, "DisplayProfileFound( name as String, path as String )",
                   [&events](devhost::Object&, devhost::Values& arguments) -> devhost::Value {
                     events.emplace_back(arguments[0].text(), arguments[1].text());
                     return {};
                   });
    return object;
  }

  support::ScriptedSession session;
  devhost::Host host;
  devhost::Plugin plugin;
};

}  // namespace contract
