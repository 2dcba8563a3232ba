// A host that closes the library while a walk that the library began still hangs.
#include <CoreFoundation/CoreFoundation.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "desktop/current.h"
#include "desktop/script/scripted.h"

namespace {

using namespace platform::desktop;

TEST(ClosedLibrary, StaysLoadedForARunningWalk) {
  const Uuid uuid{0xD5};
  Script script;
  script.arrangement.displays.resize(1);
  script.arrangement.displays[0].number = 1;
  script.arrangement.displays[0].uuid = uuid;
  script.device_profiles = {{kDisplayDeviceClass, uuid, "Display", true, true, "/profile.icc"}};
  script.device_walk.hang = true;
  std::promise<void> over;
  script.device_walk.after = [&over] { over.set_value(); };
  const auto desktop = std::make_shared<ScriptedDesktop>(script);
  setCurrent(desktop);

  void* const library = dlopen(OSTREVIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  using Query = CFURLRef (*)(std::uint32_t);
  const auto query = reinterpret_cast<Query>(dlsym(library, "_ZN15DisplayServices21ProfilePathForDisplayEj"));
  ASSERT_NE(query, nullptr) << dlerror();
  EXPECT_EQ(query(1), nullptr);
  EXPECT_EQ(dlclose(library), 0);

  desktop->releaseWalks();
  EXPECT_EQ(over.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

}  // namespace
