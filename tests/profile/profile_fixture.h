// A scripted desktop and empty profile maps for tests of the profile services.
#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frameworks/Foundation/autorelease_pool.h"
#include "profile/profile_iterator.h"
#include "profile/profile_services.h"
#include "support/scripted.h"

namespace support {

inline platform::desktop::InstalledProfile installed(std::string path, std::optional<std::string> description,
                                                     std::optional<std::string> profile_class = "mntr") {
  return {std::move(profile_class), std::move(description), std::move(path)};
}

/// A profile of the display whose UUID is made from `number`.
inline platform::desktop::DeviceProfile associated(std::uint8_t number, std::optional<std::string> path,
                                                   std::optional<bool> is_default = false,
                                                   std::optional<bool> is_current = false) {
  platform::desktop::DeviceProfile entry;
  entry.device_class = platform::desktop::kDisplayDeviceClass;
  entry.device_id = uuid(number);
  entry.is_default = is_default;
  entry.is_current = is_current;
  entry.profile_path = std::move(path);
  return entry;
}

class ProfileServicesTest : public testing::Test {
 protected:
  using Iterator = ProfileServices::profile_iterator;
  using Flags = std::tuple<std::string, bool, bool>;

  /// Displays 1 and 2 have UUIDs; display 3 has none.
  ProfileServicesTest() {
    session_.desktop->change([](platform::desktop::Script& script) {
      script.arrangement.displays = {display(1, {0, 0, 100, 100}), display(2, {100, 0, 100, 100}),
                                     display(3, {200, 0, 100, 100})};
      script.arrangement.displays[2].uuid.reset();
    });
    Iterator::clearInstalledArray();
    Iterator::clearAssociatedArray();
  }

  void setInstalled(std::vector<platform::desktop::InstalledProfile> profiles) {
    session_.desktop->change([&](platform::desktop::Script& script) { script.installed_profiles = profiles; });
  }
  void setAssociated(std::vector<platform::desktop::DeviceProfile> profiles) {
    session_.desktop->change([&](platform::desktop::Script& script) { script.device_profiles = profiles; });
  }

  ScriptedSession session_;

 private:
  const platform::ScopedPool pool_;
};

}  // namespace support
