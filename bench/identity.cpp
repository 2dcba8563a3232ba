// Names and profiles of displays through the plugin, and the same asked for directly: the remembered name beside the
// look-up in a dictionary, and the profile in use beside a walk with libcolord.
//
// There are two walks with libcolord: one as a program makes it that asks now and then, and one that keeps connected
// devices and asks colord for nothing but the list. The walk over ColorSync's entries, without the plugin, tells what
// the plugin's queue and wait cost from what platform/ costs.
#include <ColorSync/ColorSync.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "direct_names.h"
#include "direct_profile.h"
#include "groups.h"
#include "plugin_rows.h"

namespace bench {
namespace {

constexpr double kNameBar = 1.5;
constexpr double kProfileBar = 1.3;
constexpr Batches kWalks{.rounds = 101, .calls = 4};
constexpr const char* kProfile = "/usr/share/color/icc/colord/AdobeRGB1998.icc";

/// Every assignment has all devices read again, which takes a call to colord for each.
constexpr long kMostForAssignment = 100;
constexpr const char* kOtherProfile = "/usr/share/color/icc/colord/sRGB.icc";

constexpr const char* kLookUp = "UUID, its text, look-up in a dictionary";
constexpr const char* kFresh = "libcolord: list, connect, default profile";
constexpr const char* kKept = "libcolord, devices kept connected: list only";
constexpr const char* kDevices = "Profiles of a display, live desktop, devices in colord";

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

void compareNames(Suite& suite, uint32_t display, double bar, Batches batches = {}) {
  auto* const get_name = PluginRows::instance().method<GetText>("GetName");
  auto* const known = PluginRows::instance().symbol<CFStringRef(uint32_t)>("_ZN15DisplayServices17KnownDisplayForIDEj");
  expectEqual(textOf(get_name, display), kMonitorName);
  const CFDictionaryRef names = makeNames(display, known(display));
  expectEqual(directText(directName(names, display)), kMonitorName);

  const auto look_up = [=] { keep(directName(names, display)); };
  const CFStringRef ready_key = keyOf(display);
  suite.compare(
      {"the name cache", "the look-up alone, with a ready key", bar}, [=] { keep(known(display)); },
      [=] { keep(CFDictionaryGetValue(names, ready_key)); }, batches);
  suite.compare(
      {"the name cache", kLookUp, bar}, [=] { keep(known(display)); }, look_up, batches);
  const auto whole_call = [=] {
    static char* slot = nullptr;
    get_name(display, &slot);
  };
  suite.compare({"GetName", kLookUp, bar}, whole_call, look_up, batches);
  const auto with_string = [=] {
    static char* slot = nullptr;
    const char* const text = directText(directName(names, display));
    char* const made = PluginRows::makeString(text, static_cast<int>(std::strlen(text)), 0);
    PluginRows::releaseString(slot);
    slot = made;
  };
  suite.compare({"GetName", "the same and a host string", bar}, whole_call, with_string, batches);
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

void compareProfiles(Suite& suite, uint32_t display, const std::string& output) {
  auto* const get_profile = PluginRows::instance().method<GetText>("GetProfilePath");
  const DirectProfile direct;
  DirectProfile keeping;
  keeping.keepConnected();
  expectEqual(textOf(get_profile, display), kProfile);
  expectEqual(direct.file(output), kProfile);
  expectEqual(keeping.file(output), kProfile);
  const auto plugin = [=] {
    static char* slot = nullptr;
    get_profile(display, &slot);
  };
  const auto walk = [=] { walkColorSync(display); };
  const auto fresh = [&] { keep(direct.file(output)); };
  const auto kept = [&] { keep(keeping.file(output)); };
  suite.compare({"GetProfilePath", kFresh, kProfileBar}, plugin, fresh, kWalks);
  suite.compare({"GetProfilePath", kKept, kProfileBar}, plugin, kept, kWalks);
  suite.compare({"ColorSync's walk alone", kKept, kProfileBar}, walk, kept, kWalks);
}

void assignProfile(uint32_t display) {
  char path[] = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
  if (!PluginRows::instance().method<bool(uint32_t, char*)>("SetProfile")(display, path)) {
    throw std::runtime_error("no profile could be assigned");
  }
}

constexpr uint32_t kVendor = 1;
constexpr uint32_t kProduct = 2;

/// Two files by turns, so that each call has something to do.
void compareAssignment(Suite& suite, uint32_t display, const std::string& output) {
  auto* const set_profile = PluginRows::instance().method<bool(uint32_t, const char*)>("SetProfile");
  const DirectProfile direct;
  const auto by_turns = [](auto assign) {
    return [assign, turn = 0]() mutable {
      if (!assign(++turn % 2 == 0 ? kProfile : kOtherProfile)) {
        throw std::runtime_error("no profile could be assigned");
      }
    };
  };
  suite.compare({"SetProfile", "libcolord: find file and device, add, make default"},
                by_turns([=](const char* file) { return set_profile(display, file); }),
                by_turns([&](const char* file) { return direct.makeDefault(output, file); }),
                {.rounds = 15, .calls = 2});
}

/// A display with a UUID of its own.
platform::desktop::Display namedDisplay(long index) {
  platform::desktop::Display display;
  display.number = static_cast<uint32_t>(index + 1);
  display.bounds = {static_cast<double>(index), 0, 1, 1};
  platform::desktop::Uuid uuid{};
  std::memcpy(uuid.data(), &display.number, sizeof display.number);
  display.uuid = uuid;
  display.vendor = kVendor;
  display.model = kProduct;
  return display;
}

/// Devices of displays that are not there, as a colord keeps them of displays that were connected once.
void registerDevices(test_support::PrivateColord& colord, long from, long to) {
  for (long i = from; i < to; ++i) {
    const std::string number = std::to_string(i);
    colord.registerDevice("absent-" + number, {{"XRANDR_name", "ABSENT-" + number}, {"Model", "Model " + number}});
  }
}

}  // namespace

void measureLiveIdentity(Suite& suite, test_support::XorgServer& server, test_support::PrivateColord& colord) {
  platform::desktop::setCurrent(nullptr);
  const uint32_t first = server.output("DUMMY0").id;
  suite.begin("Names, live desktop", 3);
  compareNames(suite, first, kNameBar);

  const uint32_t last = server.output("DUMMY2").id;
  for (const uint32_t display : {first, server.output("DUMMY1").id, last}) {
    assignProfile(display);
  }
  long devices = 3;
  for (const long more : suite.sizes({3, 10, 100, 1000})) {
    registerDevices(colord, devices, more);
    devices = more;
    suite.begin(kDevices, devices);
    compareProfiles(suite, last, "DUMMY2");
    if (devices <= kMostForAssignment) {
      compareAssignment(suite, last, "DUMMY2");
    }
  }
  platform::desktop::setCurrent(nullptr);
}

void measureNameGrowth(Suite& suite) {
  for (const long displays : suite.sizes({10, 100, 1000, 10000})) {
    platform::desktop::Script script;
    for (long i = 0; i < displays; ++i) {
      script.arrangement.displays.push_back(namedDisplay(i));
    }
    platform::desktop::DisplayService service;
    service.vendor = kVendor;
    service.product = kProduct;
    service.product_names.emplace().emplace_back("en", kMonitorName);
    script.arrangement.services.push_back(service);
    platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
    suite.begin(kDisplayGrowth, displays);
    const Batches batches{.rounds = 101, .calls = static_cast<int>(std::clamp(10000 / displays, 10L, 100L))};
    compareNames(suite, static_cast<uint32_t>(displays), 0, batches);
  }
  platform::desktop::setCurrent(nullptr);
}

}  // namespace bench
