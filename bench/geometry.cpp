// The geometry methods beside the same framework calls. Every method is asked for the last display, the longest search.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "desktop/current.h"
#include "desktop/script/scripted.h"
#include "direct_calls.h"
#include "groups.h"
#include "plugin_methods.h"

namespace bench {
namespace {

/// Leaves the plugin 15 % on top of the calls themselves.
constexpr double kBar = 1.15;
constexpr long kMostWithBar = 64;

constexpr const char* kDirectly = "the same framework calls";
constexpr const char* kKeeping = "the same calls and a heap buffer kept";

/// What a pair is about.
struct Last {
  CGDirectDisplayID display = 0;
  uint32_t index = 0;
  Batches batches;
};

void expectEqual(uint32_t actual, uint32_t expected) {
  if (actual != expected) {
    throw std::runtime_error(std::to_string(actual) + " instead of " + std::to_string(expected));
  }
}

Last lastOf(long displays) {
  std::vector<CGDirectDisplayID> active(static_cast<std::size_t>(displays) + 1);
  uint32_t count = 0;
  CGGetActiveDisplayList(static_cast<uint32_t>(active.size()), active.data(), &count);
  expectEqual(count, static_cast<uint32_t>(displays));
  Last last{.display = active[count - 1], .index = count - 1, .batches = {}};
  if (displays > kMostWithBar) {
    // The buffers that the plugin keeps are large here: fewer calls.
    last.batches = {.rounds = 101, .calls = static_cast<int>(std::clamp(10000 / displays, 1L, 100L))};
  }
  return last;
}

Pair indexPair(const Last& last, uint32_t (*direct)(CGDirectDisplayID)) {
  auto* const get_index = pluginMethod<uint32_t(uint32_t)>("GetIndex");
  const CGDirectDisplayID display = last.display;
  expectEqual(get_index(display), last.index);
  expectEqual(direct(display), last.index);
  return pairOf([=] { keep(get_index(display)); }, [=] { keep(direct(display)); }, last.batches);
}

template <typename Number>
Pair rectPair(const Last& last, const char* method) {
  auto* const get_rect = pluginMethod<void(uint32_t, Number*, Number*, Number*, Number*)>(method);
  const CGDirectDisplayID display = last.display;
  return pairOf(
      [=] {
        Number rect[4];
        get_rect(display, &rect[0], &rect[1], &rect[2], &rect[3]);
        keep(rect);
      },
      [=] { keep(directBounds(display)); }, last.batches);
}

Pair scalePair(const Last& last) {
  auto* const get_scale = pluginMethod<double(uint32_t)>("GetScale");
  const CGDirectDisplayID display = last.display;
  return pairOf([=] { keep(get_scale(display)); }, [=] { keep(directScale(display)); }, last.batches);
}

Pair windowPair(const Last& last, CGDirectDisplayID (*direct)(CGRect)) {
  auto* const under = pluginMethod<uint32_t(int32_t, int32_t, int32_t, int32_t)>("DisplayIDForWindow");
  const CGRect bounds = CGDisplayBounds(last.display);
  const auto left = static_cast<int32_t>(bounds.origin.x) + 1;
  const auto top = static_cast<int32_t>(bounds.origin.y) + 1;
  const CGRect rect = CGRectMake(left, top + 10, 10, 10);
  expectEqual(under(left, top, 10, 10), last.display);
  expectEqual(direct(rect), last.display);
  return pairOf([=] { keep(under(left, top, 10, 10)); }, [=] { keep(direct(rect)); }, last.batches);
}

/// The rows for one desktop. `use` makes it the desktop in use.
void addRows(const Suite& suite, long displays, const char* what, const std::function<void()>& use) {
  const auto add = [&](const char* method, const char* twin, std::function<Pair(const Last&)> make_pair) {
    suite.add({method, displays, what, twin, displays <= kMostWithBar ? kBar : 0}, [=] {
      use();
      return make_pair(lastOf(displays));
    });
  };
  add("GetIndex", kDirectly, [](const Last& last) { return indexPair(last, directIndex); });
  add("GetIndex", kKeeping, [](const Last& last) { return indexPair(last, directIndexKeepingBuffer); });
  add("GetRect", kDirectly, [](const Last& last) { return rectPair<int32_t>(last, "GetRect"); });
  add("GetCGRect", kDirectly, [](const Last& last) { return rectPair<double>(last, "GetCGRect"); });
  add("GetScale", kDirectly, scalePair);
  add("DisplayIDForWindow", kDirectly, [](const Last& last) { return windowPair(last, directDisplayUnder); });
  add("DisplayIDForWindow", kKeeping,
      [](const Last& last) { return windowPair(last, directDisplayUnderKeepingBuffer); });
}

/// A grid. Screens are as the displays are.
void useScriptedDesktop(long count) {
  platform::desktop::Script script;
  for (long i = 0; i < count; ++i) {
    platform::desktop::Display display;
    display.number = static_cast<uint32_t>(i + 1);
    display.bounds = {static_cast<double>(i % kGridColumns) * kGridWidth,
                      static_cast<double>(i / kGridColumns) * kGridHeight, kGridWidth, kGridHeight};
    script.arrangement.displays.push_back(display);
    script.arrangement.screens.push_back({display.bounds, 2});
  }
  script.arrangement.main_screen = 0;
  platform::desktop::setCurrent(std::make_shared<platform::desktop::ScriptedDesktop>(script));
}

}  // namespace

void addGeometry(const Suite& suite, LiveDesktop& live) {
  for (const long displays : suite.sizes({3, 64})) {
    addRows(suite, displays, "live displays", [&live, displays] { live.use(displays); });
  }
  for (const long displays : suite.sizes({3, 10, 64, 100, 1000, 10000})) {
    addRows(suite, displays, "scripted displays", [displays] { useScriptedDesktop(displays); });
  }
}

}  // namespace bench
