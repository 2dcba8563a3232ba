// The geometry methods through their rows, and the same framework calls made directly, over the desktop that is there
// (a scripted one with OSTREVIN_DESKTOP=FILE). Every method is asked about the last display, the longest way to search.
#include <benchmark/benchmark.h>

#include <vector>

#include "direct_screens.h"
#include "plugin_rows.h"

namespace {

using bench::PluginRows;

CGDirectDisplayID lastDisplay() {
  std::vector<CGDirectDisplayID> displays(256);
  uint32_t count = 0;
  CGGetActiveDisplayList(static_cast<uint32_t>(displays.size()), displays.data(), &count);
  return count == 0 ? 0 : displays[count - 1];
}

void GetIndex_plugin(benchmark::State& state) {
  auto* const method = PluginRows::instance().method<uint32_t(uint32_t)>("GetIndex");
  const auto display = lastDisplay();
  for (auto _ : state) {
    benchmark::DoNotOptimize(method(display));
  }
}

void GetIndex_direct(benchmark::State& state) {
  const auto display = lastDisplay();
  for (auto _ : state) {
    benchmark::DoNotOptimize(bench::directIndex(display));
  }
}

void GetRect_plugin(benchmark::State& state) {
  auto* const method = PluginRows::instance().method<void(uint32_t, int32_t*, int32_t*, int32_t*, int32_t*)>("GetRect");
  const auto display = lastDisplay();
  int32_t edges[4] = {};
  for (auto _ : state) {
    method(display, &edges[0], &edges[1], &edges[2], &edges[3]);
    benchmark::DoNotOptimize(edges);
  }
}

void GetCGRect_plugin(benchmark::State& state) {
  auto* const method = PluginRows::instance().method<void(uint32_t, double*, double*, double*, double*)>("GetCGRect");
  const auto display = lastDisplay();
  double rect[4] = {};
  for (auto _ : state) {
    method(display, &rect[0], &rect[1], &rect[2], &rect[3]);
    benchmark::DoNotOptimize(rect);
  }
}

void bounds_direct(benchmark::State& state) {
  const auto display = lastDisplay();
  for (auto _ : state) {
    benchmark::DoNotOptimize(bench::directBounds(display));
  }
}

void GetScale_plugin(benchmark::State& state) {
  auto* const method = PluginRows::instance().method<double(uint32_t)>("GetScale");
  const auto display = lastDisplay();
  for (auto _ : state) {
    benchmark::DoNotOptimize(method(display));
  }
}

void GetScale_direct(benchmark::State& state) {
  const auto display = lastDisplay();
  for (auto _ : state) {
    benchmark::DoNotOptimize(bench::directScale(display));
  }
}

void DisplayIDForWindow_plugin(benchmark::State& state) {
  auto* const method =
      PluginRows::instance().method<uint32_t(int32_t, int32_t, int32_t, int32_t)>("DisplayIDForWindow");
  const CGRect bounds = CGDisplayBounds(lastDisplay());
  const auto left = static_cast<int32_t>(bounds.origin.x) + 1;
  const auto top = static_cast<int32_t>(bounds.origin.y) + 1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(method(left, top, 10, 10));
  }
}

void DisplayIDForWindow_direct(benchmark::State& state) {
  const CGRect bounds = CGDisplayBounds(lastDisplay());
  const CGRect rect = CGRectMake(bounds.origin.x + 1, bounds.origin.y + 11, 10, 10);
  for (auto _ : state) {
    benchmark::DoNotOptimize(bench::directDisplayUnder(rect));
  }
}

BENCHMARK(GetIndex_plugin);
BENCHMARK(GetIndex_direct);
BENCHMARK(GetRect_plugin);
BENCHMARK(GetCGRect_plugin);
BENCHMARK(bounds_direct);
BENCHMARK(GetScale_plugin);
BENCHMARK(GetScale_direct);
BENCHMARK(DisplayIDForWindow_plugin);
BENCHMARK(DisplayIDForWindow_direct);

}  // namespace

BENCHMARK_MAIN();
