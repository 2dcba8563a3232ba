// Names and profiles of displays through the plugin, and the same asked for directly: the remembered name beside the
// look-up in a dictionary, and the profile in use beside a walk with libcolord. On a private X server with a private
// colord.
//
// There are two walks with libcolord: one as a program makes it that asks now and then, and one that keeps connected
// devices and asks colord for nothing but the list. The walk over ColorSync's entries, without the plugin, tells what
// the plugin's queue and wait cost from what platform/ costs.
#include <ColorSync/ColorSync.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "desktop/current.h"
#include "direct_names.h"
#include "direct_profile.h"
#include "paired_timing.h"
#include "plugin_rows.h"
#include "support/edid_maker.h"
#include "support/private_colord.h"
#include "support/xorg_server.h"

namespace {

using bench::keep;
using bench::PairedTiming;
using bench::PluginRows;

constexpr double kNameBar = 1.5;
constexpr double kProfileBar = 1.3;
constexpr bench::Batches kWalks{.rounds = 101, .calls = 4};
constexpr const char* kName = "DELL U2412M";
constexpr const char* kProfile = "/usr/share/color/icc/colord/AdobeRGB1998.icc";

using GetText = void(uint32_t, char**);

/// What a method stores in its by-reference argument.
std::string textOf(GetText* method, uint32_t display) {
  char* text = nullptr;
  method(display, &text);
  const std::string result = text;
  std::free(text);
  return result;
}

void expectEqual(const std::string& actual, const std::string& expected) {
  if (actual != expected) {
    throw std::runtime_error("\"" + actual + "\" instead of \"" + expected + "\"");
  }
}

void compareNames(PairedTiming& timing, uint32_t display) {
  auto* const get_name = PluginRows::instance().method<GetText>("GetName");
  auto* const known = PluginRows::instance().symbol<CFStringRef(uint32_t)>("_ZN15DisplayServices17KnownDisplayForIDEj");
  expectEqual(textOf(get_name, display), kName);
  const CFDictionaryRef names = bench::makeNames(display, known(display));
  expectEqual(bench::directText(bench::directName(names, display)), kName);

  timing.section("GetName, remembered");
  const auto look_up = [=] { keep(bench::directName(names, display)); };
  timing.compare(
      "the cache / UUID, text, look-up", kNameBar, [=] { keep(known(display)); }, look_up);
  const auto whole_call = [=] {
    static char* slot = nullptr;
    get_name(display, &slot);
  };
  timing.compare("the row / UUID, text, look-up", kNameBar, whole_call, look_up);
  timing.compare("the row / the same and a host string", kNameBar, whole_call, [=] {
    static char* slot = nullptr;
    const char* const text = bench::directText(bench::directName(names, display));
    char* const made = PluginRows::makeString(text, static_cast<int>(std::strlen(text)), 0);
    PluginRows::releaseString(slot);
    slot = made;
  });
}

/// The walk of ColorSync's entries up to the display's first one, on this thread.
void walkColorSync(uint32_t display) {
  const CFUUIDRef uuid = CGDisplayCreateUUIDFromDisplayID(display);
  ColorSyncIterateDeviceProfiles(
      [](CFDictionaryRef entry, void* sought) -> bool {
        return CFDictionaryGetValue(entry, kColorSyncDeviceID) != sought;
      },
      const_cast<void*>(static_cast<const void*>(uuid)));
  CFRelease(uuid);
}

void compareProfiles(PairedTiming& timing, const std::string& title, uint32_t display, const std::string& output) {
  auto* const get_profile = PluginRows::instance().method<GetText>("GetProfilePath");
  const bench::DirectProfile direct;
  expectEqual(textOf(get_profile, display), kProfile);
  expectEqual(direct.file(output), kProfile);
  timing.section(title);
  const auto plugin = [=] {
    static char* slot = nullptr;
    get_profile(display, &slot);
  };
  timing.compare(
      "the row / libcolord", kProfileBar, plugin, [&] { keep(direct.file(output)); }, kWalks);
  timing.compare(
      "ColorSync's walk alone / libcolord", kProfileBar, [=] { walkColorSync(display); },
      [&] { keep(direct.file(output)); }, kWalks);
  bench::DirectProfile keeping;
  keeping.keepConnected();
  expectEqual(keeping.file(output), kProfile);
  timing.compare(
      "the row / libcolord, objects kept", kProfileBar, plugin, [&] { keep(keeping.file(output)); }, kWalks);
  timing.compare(
      "ColorSync's walk alone / the same", kProfileBar, [=] { walkColorSync(display); },
      [&] { keep(keeping.file(output)); }, kWalks);
}

void assignProfile(uint32_t display) {
  char path[] = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
  if (!PluginRows::instance().method<bool(uint32_t, char*)>("SetProfile")(display, path)) {
    throw std::runtime_error("no profile could be assigned");
  }
}

}  // namespace

int main() {
  const test_support::PrivateColord colord;
  test_support::XorgServer server;
  unsetenv("OSTREVIN_DESKTOP");
  setenv("DISPLAY", server.display().c_str(), 1);
  server.place({{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  server.setEdid("DUMMY0", test_support::makeEdid({.vendor = "DEL", .serial = 1502, .name = kName}));
  const uint32_t first = server.output("DUMMY0").id;

  PairedTiming timing;
  compareNames(timing, first);
  assignProfile(first);
  compareProfiles(timing, "GetProfilePath, one device in colord", first, "DUMMY0");
  const uint32_t last = server.output("DUMMY2").id;
  assignProfile(server.output("DUMMY1").id);
  assignProfile(last);
  compareProfiles(timing, "GetProfilePath, the last of three devices", last, "DUMMY2");
  platform::desktop::setCurrent(nullptr);
  return 0;
}
