// The geometry methods through their rows, and the same framework calls made directly. Every method is asked about the
// last display, the longest way to search.
//
// The plugin keeps a heap buffer for each call of GetIndex and DisplayIDForWindow, which is a part of what those do.
// Each is also beside a twin that does the same, so that this part can be told from the rest.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "desktop/x11/x11_round_trips.h"
#include "direct_screens.h"
#include "groups.h"
#include "plugin_rows.h"

namespace bench {
namespace {

using platform::desktop::x11RoundTrips;

/// The greatest ratio that leaves the plugin 15 % on top of the calls themselves.
constexpr double kBar = 1.15;

constexpr int kMany = 64;
constexpr int kColumns = 8;
constexpr int kWidth = 400;
constexpr int kHeight = 225;

CGDirectDisplayID lastDisplay(std::size_t expected) {
  std::vector<CGDirectDisplayID> displays(expected + 1);
  uint32_t count = 0;
  CGGetActiveDisplayList(static_cast<uint32_t>(displays.size()), displays.data(), &count);
  if (count != expected) {
    throw std::runtime_error("there are " + std::to_string(count) + " displays");
  }
  return displays[count - 1];
}

constexpr const char* kDirectly = "the same framework calls";
constexpr const char* kKeeping = "the same calls and a heap buffer kept";

void compareRectangles(Suite& suite, CGDirectDisplayID display, double bar, Batches batches) {
  auto* const get_rect =
      PluginRows::instance().method<void(uint32_t, int32_t*, int32_t*, int32_t*, int32_t*)>("GetRect");
  auto* const get_cg_rect =
      PluginRows::instance().method<void(uint32_t, double*, double*, double*, double*)>("GetCGRect");
  const auto direct = [=] { keep(directBounds(display)); };
  suite.compare(
      {"GetRect", kDirectly, bar},
      [=] {
        int32_t edges[4];
        get_rect(display, &edges[0], &edges[1], &edges[2], &edges[3]);
        keep(edges);
      },
      direct, batches);
  suite.compare(
      {"GetCGRect", kDirectly, bar},
      [=] {
        double rect[4];
        get_cg_rect(display, &rect[0], &rect[1], &rect[2], &rect[3]);
        keep(rect);
      },
      direct, batches);
}

void compareIndex(Suite& suite, CGDirectDisplayID display, std::size_t displays, double bar, Batches batches) {
  auto* const get_index = PluginRows::instance().method<uint32_t(uint32_t)>("GetIndex");
  if (get_index(display) != displays - 1 || directIndex(display) != displays - 1 ||
      directIndexKeepingBuffer(display) != displays - 1) {
    throw std::runtime_error("the display is not the last one");
  }
  const auto index = [=] { keep(get_index(display)); };
  suite.compare(
      {"GetIndex", kDirectly, bar}, index, [=] { keep(directIndex(display)); }, batches);
  suite.compare(
      {"GetIndex", kKeeping, bar}, index, [=] { keep(directIndexKeepingBuffer(display)); }, batches);
}

void compareScale(Suite& suite, CGDirectDisplayID display, double bar, Batches batches) {
  auto* const get_scale = PluginRows::instance().method<double(uint32_t)>("GetScale");
  suite.compare(
      {"GetScale", kDirectly, bar}, [=] { keep(get_scale(display)); }, [=] { keep(directScale(display)); }, batches);
}

void compareWindows(Suite& suite, CGDirectDisplayID display, double bar, Batches batches) {
  auto* const under = PluginRows::instance().method<uint32_t(int32_t, int32_t, int32_t, int32_t)>("DisplayIDForWindow");
  const CGRect bounds = CGDisplayBounds(display);
  const auto left = static_cast<int32_t>(bounds.origin.x) + 1;
  const auto top = static_cast<int32_t>(bounds.origin.y) + 1;
  const CGRect rect = CGRectMake(left, top + 10, 10, 10);
  if (under(left, top, 10, 10) != display || directDisplayUnder(rect) != display) {
    throw std::runtime_error("the display is not the one under the window");
  }
  const auto plugin = [=] { keep(under(left, top, 10, 10)); };
  suite.compare(
      {"DisplayIDForWindow", kDirectly, bar}, plugin, [=] { keep(directDisplayUnder(rect)); }, batches);
  suite.compare(
      {"DisplayIDForWindow", kKeeping, bar}, plugin, [=] { keep(directDisplayUnderKeepingBuffer(rect)); }, batches);
}

void compareAll(Suite& suite, const std::string& group, std::size_t displays, double bar, Batches batches = {}) {
  suite.begin(group, static_cast<long>(displays));
  const CGDirectDisplayID display = lastDisplay(displays);
  compareIndex(suite, display, displays, bar, batches);
  compareRectangles(suite, display, bar, batches);
  compareScale(suite, display, bar, batches);
  compareWindows(suite, display, bar, batches);
}

void compareOnServer(Suite& suite, std::size_t displays) {
  lastDisplay(displays);  // the first reading
  const auto round_trips = x11RoundTrips();
  compareAll(suite, "Geometry, live desktop", displays, kBar);
  suite.note("Round trips to the X server while the geometry of " + std::to_string(displays) +
             " live displays was asked for: " + std::to_string(x11RoundTrips() - round_trips) + ".");
}
/// The first `count` places of a grid. Screens are as the displays are.
void useScriptedDesktop(long count) {
  platform::desktop::Script script;
  for (long i = 0; i < count; ++i) {
    platform::desktop::Display display;
    display.number = static_cast<uint32_t>(i + 1);
    const auto column = static_cast<double>(i % kColumns);
    const auto row = static_cast<double>(i / kColumns);
    display.bounds = {column * kWidth, row * kHeight, kWidth, kHeight};
    script.arrangement.displays.push_back(display);
    script.arrangement.screens.push_back({display.bounds, 2});
  }
  script.arrangement.main_screen = 0;
  platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
}

void makeManyMonitors(test_support::XorgServer& server) {
  server.off("DUMMY1");
  server.off("DUMMY2");
  server.setMode("DUMMY0", kColumns * kWidth, kMany / kColumns * kHeight, 0, 0);
  for (int i = 0; i < kMany; ++i) {
    const std::string area = std::to_string(kWidth) + "/100x" + std::to_string(kHeight) + "/60+" +
                             std::to_string(kWidth * (i % kColumns)) + "+" + std::to_string(kHeight * (i / kColumns));
    server.setMonitor("part-" + std::to_string(i), area, i == 0 ? "DUMMY0" : "none");
  }
}

}  // namespace

void measureLiveGeometry(Suite& suite, test_support::XorgServer& server) {
  platform::desktop::setCurrent(nullptr);
  compareOnServer(suite, 3);
  if (!suite.isQuick()) {
    makeManyMonitors(server);
    compareOnServer(suite, kMany);
  }
  platform::desktop::setCurrent(nullptr);
}

void measureScriptedGeometry(Suite& suite) {
  for (const long displays : {3, kMany}) {
    useScriptedDesktop(displays);
    compareAll(suite, "Geometry, scripted desktop", static_cast<std::size_t>(displays), kBar);
  }
  platform::desktop::setCurrent(nullptr);
}

void measureDisplayGrowth(Suite& suite) {
  for (const long displays : suite.sizes({10, 100, 1000, 10000})) {
    useScriptedDesktop(displays);
    // The buffers that are kept are large here: fewer calls.
    const Batches batches{.rounds = 101, .calls = static_cast<int>(std::clamp(10000 / displays, 1L, 100L))};
    compareAll(suite, kDisplayGrowth, static_cast<std::size_t>(displays), 0, batches);
  }
  platform::desktop::setCurrent(nullptr);
}

}  // namespace bench
