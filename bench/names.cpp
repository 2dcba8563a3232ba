// GetName beside the look-up of a remembered name in a dictionary.
#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "direct_calls.h"
#include "display/display_services.h"
#include "groups.h"
#include "plugin_methods.h"

namespace bench {
namespace {

constexpr double kBar = 1.5;

void expectName(const std::string& name) {
  if (name != kMonitorName) {
    throw std::runtime_error("\"" + name + "\" instead of \"" + kMonitorName + "\"");
  }
}

/// Stores a host string in the place of the one before, as a host's variable does.
void assign(char*& variable, const char* text) {
  char* const made = host_entries::makeString(text, static_cast<int>(std::strlen(text)), 0);
  host_entries::releaseString(variable);
  variable = made;
}

/// The rows for one display. `use` makes its desktop the one in use and returns the display.
void addRows(const Suite& suite, long displays, const char* what, double bar, Batches batches,
             const std::function<uint32_t()>& use) {
  const auto add = [&](const char* twin, const std::function<Timer(uint32_t, CFDictionaryRef)>& twin_of) {
    suite.add({"GetName", displays, what, twin, bar}, [=]() -> Pair {
      const uint32_t display = use();
      const auto whole_call = [display, get_name = pluginMethod<void(uint32_t, char**)>("GetName")] {
        static char* variable = nullptr;
        get_name(display, &variable);
        return variable;
      };
      expectName(whole_call());
      const CFDictionaryRef names = makeNames(display, DisplayServices::KnownDisplayForID(display));
      expectName(directText(directName(names, display)));
      return {timerOf(whole_call), twin_of(display, names), batches};
    });
  };
  add("the look-up alone, with a ready key", [](uint32_t display, CFDictionaryRef names) {
    return timerOf([names, key = keyOf(display)] { keep(CFDictionaryGetValue(names, key)); });
  });
  add("UUID, its text, look-up in a dictionary",
      [](uint32_t display, CFDictionaryRef names) { return timerOf([=] { keep(directName(names, display)); }); });
  add("UUID, its text, look-up, host string", [](uint32_t display, CFDictionaryRef names) {
    return timerOf([=] {
      static char* variable = nullptr;
      assign(variable, directText(directName(names, display)));
    });
  });
}

/// Displays with UUIDs of their own, and one name for all. Returns the last.
uint32_t useNamedDesktop(long count) {
  constexpr uint32_t kVendor = 1;
  constexpr uint32_t kProduct = 2;
  platform::desktop::Script script;
  for (long i = 0; i < count; ++i) {
    platform::desktop::Display display;
    display.number = static_cast<uint32_t>(i + 1);
    display.bounds = {static_cast<double>(i), 0, 1, 1};
    std::memcpy(display.uuid.emplace().data(), &display.number, sizeof display.number);
    display.vendor = kVendor;
    display.model = kProduct;
    script.arrangement.displays.push_back(display);
  }
  platform::desktop::DisplayService service;
  service.vendor = kVendor;
  service.product = kProduct;
  service.product_names.emplace().emplace_back("en", kMonitorName);
  script.arrangement.services.push_back(service);
  platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
  return static_cast<uint32_t>(count);
}

}  // namespace

void addNames(const Suite& suite, LiveDesktop& live) {
  addRows(suite, 3, "live displays", kBar, {}, [&live] {
    live.use(3);
    return live.display("DUMMY0");
  });
  for (const long displays : suite.sizes({10, 100, 1000, 10000})) {
    const Batches batches{.rounds = 101, .calls = static_cast<int>(std::clamp(10000 / displays, 10L, 100L))};
    addRows(suite, displays, "scripted displays", 0, batches, [displays] { return useNamedDesktop(displays); });
  }
}

}  // namespace bench
