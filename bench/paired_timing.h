// A call and its twin, timed side by side: in short batches that take turns, so that whatever else the computer does
// falls on both alike. One thread.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "devhost/autorelease.h"

namespace bench {

struct Batches {
  int rounds = 401;
  int calls = 100;  ///< in each batch
};

/// Nanoseconds for a call. Each batch is within a pool, as each turn of a host's event loop is.
template <typename Call>
double timeOfBatch(Call& call, int calls) {
  const devhost::AutoreleasePool pool;
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) {
    call();
  }
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count() / calls;
}

inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Prints one line for each pair: the median times, and the median of the rounds' ratios beside the greatest that it
/// should have.
class PairedTiming {
 public:
  void section(const std::string& title) {
    std::printf("\n%-44s %12s %12s %7s %6s\n", title.c_str(), "plugin ns", "direct ns", "ratio", "bar");
  }

  template <typename Plugin, typename Direct>
  void compare(const std::string& name, double bar, Plugin plugin, Direct direct, Batches batches = {}) {
    timeOfBatch(plugin, batches.calls);
    timeOfBatch(direct, batches.calls);
    std::vector<double> plugin_times;
    std::vector<double> direct_times;
    std::vector<double> ratios;
    for (int round = 0; round < batches.rounds; ++round) {
      // Whoever is second finds warm caches; so both are, in turn.
      const bool plugin_first = round % 2 == 0;
      double plugin_time = plugin_first ? timeOfBatch(plugin, batches.calls) : 0;
      const double direct_time = timeOfBatch(direct, batches.calls);
      plugin_time = plugin_first ? plugin_time : timeOfBatch(plugin, batches.calls);
      plugin_times.push_back(plugin_time);
      direct_times.push_back(direct_time);
      ratios.push_back(plugin_time / direct_time);
    }
    const double ratio = median(ratios);
    const bool over = ratio > bar;
    std::printf("%-44s %12.0f %12.0f %7.3f %6.2f%s\n", name.c_str(), median(plugin_times), median(direct_times), ratio,
                bar, over ? "  over" : "");
    std::fflush(stdout);
  }
};

/// Keeps the compiler from leaving out what makes the value.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace bench
