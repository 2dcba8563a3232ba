// The geometry methods through their rows, and the same framework calls made directly: for 3 displays and for 64, on a
// private X server and on a scripted desktop, in one run. Every method is asked about the last display, the longest way
// to search.
//
// The plugin keeps a heap buffer for each call of GetIndex and DisplayIDForWindow, which is a part of what those do.
// Each is also beside a twin that does the same, so that this part can be told from the rest.
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/current.h"
#include "desktop/scripted.h"
#include "desktop/x11_round_trips.h"
#include "direct_screens.h"
#include "paired_timing.h"
#include "plugin_rows.h"
#include "support/xorg_server.h"

namespace {

using bench::keep;
using bench::PairedTiming;
using bench::PluginRows;
using platform::desktop::x11RoundTrips;

/// The greatest ratio that leaves the plugin 15 % on top of the calls themselves.
constexpr double kBar = 1.15;

/// An 8 by 8 grid.
constexpr int kMany = 64;
constexpr int kWidth = 400;
constexpr int kHeight = 225;

CGDirectDisplayID lastDisplay(std::size_t expected) {
  std::vector<CGDirectDisplayID> displays(256);
  uint32_t count = 0;
  CGGetActiveDisplayList(static_cast<uint32_t>(displays.size()), displays.data(), &count);
  if (count != expected) {
    throw std::runtime_error("there are " + std::to_string(count) + " displays");
  }
  return displays[count - 1];
}

void compareRectangles(PairedTiming& timing, CGDirectDisplayID display) {
  auto* const get_rect =
      PluginRows::instance().method<void(uint32_t, int32_t*, int32_t*, int32_t*, int32_t*)>("GetRect");
  auto* const get_cg_rect =
      PluginRows::instance().method<void(uint32_t, double*, double*, double*, double*)>("GetCGRect");
  const auto direct = [=] { keep(bench::directBounds(display)); };
  timing.compare(
      "GetRect", kBar,
      [=] {
        int32_t edges[4];
        get_rect(display, &edges[0], &edges[1], &edges[2], &edges[3]);
        keep(edges);
      },
      direct);
  timing.compare(
      "GetCGRect", kBar,
      [=] {
        double rect[4];
        get_cg_rect(display, &rect[0], &rect[1], &rect[2], &rect[3]);
        keep(rect);
      },
      direct);
}

void compareWindows(PairedTiming& timing, CGDirectDisplayID display) {
  auto* const under = PluginRows::instance().method<uint32_t(int32_t, int32_t, int32_t, int32_t)>("DisplayIDForWindow");
  const CGRect bounds = CGDisplayBounds(display);
  const auto left = static_cast<int32_t>(bounds.origin.x) + 1;
  const auto top = static_cast<int32_t>(bounds.origin.y) + 1;
  const CGRect rect = CGRectMake(left, top + 10, 10, 10);
  if (under(left, top, 10, 10) != display || bench::directDisplayUnder(rect) != display) {
    throw std::runtime_error("the display is not the one under the window");
  }
  const auto plugin = [=] { keep(under(left, top, 10, 10)); };
  timing.compare("DisplayIDForWindow", kBar, plugin, [=] { keep(bench::directDisplayUnder(rect)); });
  timing.compare("DisplayIDForWindow / with a buffer kept", kBar, plugin,
                 [=] { keep(bench::directDisplayUnderKeepingBuffer(rect)); });
}

void compareAll(PairedTiming& timing, const std::string& title, std::size_t displays) {
  timing.section(title);
  const CGDirectDisplayID display = lastDisplay(displays);
  const auto round_trips = x11RoundTrips();
  auto* const get_index = PluginRows::instance().method<uint32_t(uint32_t)>("GetIndex");
  if (get_index(display) != displays - 1 || bench::directIndex(display) != displays - 1 ||
      bench::directIndexKeepingBuffer(display) != displays - 1) {
    throw std::runtime_error("the display is not the last one");
  }
  const auto index = [=] { keep(get_index(display)); };
  timing.compare("GetIndex", kBar, index, [=] { keep(bench::directIndex(display)); });
  timing.compare("GetIndex / with a buffer kept", kBar, index, [=] { keep(bench::directIndexKeepingBuffer(display)); });
  compareRectangles(timing, display);
  auto* const get_scale = PluginRows::instance().method<double(uint32_t)>("GetScale");
  timing.compare(
      "GetScale", kBar, [=] { keep(get_scale(display)); }, [=] { keep(bench::directScale(display)); });
  compareWindows(timing, display);
  std::printf("round trips to the X server meanwhile: %llu\n",
              static_cast<unsigned long long>(x11RoundTrips() - round_trips));
}

/// The first `count` places of the grid. Screens are as the displays are.
void useScriptedDesktop(int count) {
  platform::desktop::Script script;
  for (int i = 0; i < count; ++i) {
    platform::desktop::Display display;
    display.number = static_cast<uint32_t>(i + 1);
    display.bounds = {i % 8 * double{kWidth}, i / 8 * double{kHeight}, kWidth, kHeight};
    script.arrangement.displays.push_back(display);
    script.arrangement.screens.push_back({display.bounds, 2});
  }
  script.arrangement.main_screen = 0;
  platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
}

void compareOnLiveDesktop(PairedTiming& timing) {
  test_support::XorgServer server;
  unsetenv("OSTREVIN_DESKTOP");
  setenv("DISPLAY", server.display().c_str(), 1);
  platform::desktop::setCurrent(nullptr);
  server.place({{"DUMMY0", {1920, 1080, 0, 0}}, {"DUMMY1", {1280, 1024, 1920, 56}}, {"DUMMY2", {800, 600, 300, 1080}}});
  compareAll(timing, "live desktop, 3 displays", 3);
  server.off("DUMMY1");
  server.off("DUMMY2");
  server.setMode("DUMMY0", 8 * kWidth, 8 * kHeight, 0, 0);
  for (int i = 0; i < kMany; ++i) {
    const std::string area = std::to_string(kWidth) + "/100x" + std::to_string(kHeight) + "/60+" +
                             std::to_string(kWidth * (i % 8)) + "+" + std::to_string(kHeight * (i / 8));
    server.setMonitor("part-" + std::to_string(i), area, i == 0 ? "DUMMY0" : "none");
  }
  compareAll(timing, "live desktop, 64 displays", kMany);
  platform::desktop::setCurrent(nullptr);
}

}  // namespace

int main() {
  PairedTiming timing;
  compareOnLiveDesktop(timing);
  useScriptedDesktop(3);
  compareAll(timing, "scripted desktop, 3 displays", 3);
  useScriptedDesktop(kMany);
  compareAll(timing, "scripted desktop, 64 displays", kMany);
  return 0;
}
