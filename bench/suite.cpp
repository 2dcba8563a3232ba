#include "suite.h"

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <exception>

namespace bench {
namespace {

constexpr long kLargestQuickSize = 10;
constexpr Batches kQuickBatches{.rounds = 3, .calls = 4};

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

struct Medians {
  double plugin = 0;
  double twin = 0;
  double floor = 0;
  double ratio = 0;  ///< of the ratios of neighbouring batches
};

Medians measure(const Pair& pair, Batches batches) {
  pair.plugin(batches.calls);
  pair.twin(batches.calls);
  std::vector<double> plugin;
  std::vector<double> twin;
  std::vector<double> floor;
  std::vector<double> ratios;
  for (int round = 0; round < batches.rounds; ++round) {
    // The second of a round finds warm caches: each side is second by turns.
    if (round % 2 == 0) {
      plugin.push_back(pair.plugin(batches.calls));
      twin.push_back(pair.twin(batches.calls));
    } else {
      twin.push_back(pair.twin(batches.calls));
      plugin.push_back(pair.plugin(batches.calls));
    }
    floor.push_back(pair.floor ? pair.floor(batches.calls) : 0);
    ratios.push_back((plugin.back() - floor.back()) / twin.back());
  }
  return {median(plugin), median(twin), median(floor), median(ratios)};
}

/// Makes a dump of callgrind's named "TITLE/plugin/CALLS" and one named "TITLE/twin/CALLS". See bench/run --count.
void count(const std::string& title, const Pair& pair) {
  const int calls = pair.batches.calls;
  const auto series = [&](const std::string& side, const Timer& timer) {
    const std::string dump = title + "/" + side + "/" + std::to_string(calls);
    timer(1);  // look-ups are not counted
    CALLGRIND_ZERO_STATS;
    timer(calls);
    CALLGRIND_DUMP_STATS_AT(dump.c_str());
  };
  series("plugin", pair.plugin);
  series("twin", pair.twin);
}

std::string titleOf(const Row& row) {
  return row.method + "/" + (row.n > 0 ? std::to_string(row.n) + " " : "") + row.what + "/" + row.twin;
}

}  // namespace

std::vector<long> Suite::sizes(std::vector<long> all) const {
  if (quick_) {
    std::erase_if(all, [](long size) { return size > kLargestQuickSize; });
  }
  return all;
}

void Suite::add(const Row& row, std::function<Pair()> prepare) const {
  const auto run = [row, prepare, quick = quick_](benchmark::State& state) {
    Medians medians;
    try {
      const Pair pair = prepare();
      if (RUNNING_ON_VALGRIND != 0) {
        count(titleOf(row), pair);
      } else {
        medians = measure(pair, quick ? Batches{kQuickBatches.rounds, std::min(kQuickBatches.calls, pair.batches.calls)}
                                      : pair.batches);
      }
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
    }
    for (auto _ : state) {
      state.SetIterationTime(medians.plugin / 1e9);
    }
    state.counters["n"] = static_cast<double>(row.n);
    state.counters["twin_ns"] = medians.twin;
    state.counters["floor_ns"] = medians.floor;
    state.counters["ratio"] = medians.ratio;
    state.counters["bar"] = row.bar;
  };
  // One iteration is the whole measurement.
  benchmark::RegisterBenchmark(titleOf(row).c_str(), run)->Iterations(1)->UseManualTime();
}

}  // namespace bench
