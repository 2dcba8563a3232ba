#include "suite.h"

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

constexpr long kLargestQuickSize = 10;
constexpr long kLargestCountedSize = 100;
constexpr Batches kQuickBatches{.rounds = 3, .calls = 4};

/// Rows are printed by this program, all at the end.
class Silent final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) {
        throw std::runtime_error(run.benchmark_name() + ": " + run.error_message);
      }
    }
  }
};

struct Rounds {
  std::vector<double> plugin;
  std::vector<double> direct;
  std::vector<double> ratios;

  void add(const Timer& plugin_timer, const Timer& direct_timer, int calls) {
    // Whoever is second finds warm caches; so both are, in turn.
    const bool plugin_first = ratios.size() % 2 == 0;
    double plugin_time = plugin_first ? plugin_timer(calls) : 0;
    const double direct_time = direct_timer(calls);
    plugin_time = plugin_first ? plugin_time : plugin_timer(calls);
    plugin.push_back(plugin_time);
    direct.push_back(direct_time);
    ratios.push_back(plugin_time / direct_time);
  }
};

}  // namespace

std::vector<long> Suite::sizes(std::vector<long> all) const {
  if (mode_ != Mode::kFull) {
    const long largest = mode_ == Mode::kQuick ? kLargestQuickSize : kLargestCountedSize;
    std::erase_if(all, [largest](long size) { return size > largest; });
  }
  return all;
}

void Suite::begin(std::string group, long n) {
  if (mode_ == Mode::kFull) {
    std::fprintf(stderr, "measuring: %s, %ld\n", group.c_str(), n);
  }
  group_ = std::move(group);
  n_ = n;
}

void Suite::compareTimers(const Name& name, Timer plugin, Timer direct, Batches batches) {
  if (mode_ == Mode::kCount) {
    count(name, plugin, direct, batches.calls);
  } else {
    time(name, plugin, direct,
         isQuick() ? Batches{kQuickBatches.rounds, std::min(kQuickBatches.calls, batches.calls)} : batches);
  }
}

void Suite::time(const Name& name, const Timer& plugin, const Timer& direct, Batches batches) {
  plugin(batches.calls);
  direct(batches.calls);
  Rounds rounds;
  const std::string title = group_ + "/" + name.method + "/" + std::to_string(n_);
  benchmark::RegisterBenchmark(title.c_str(),
                               [&](benchmark::State& state) {
                                 for (auto _ : state) {
                                   rounds.add(plugin, direct, batches.calls);
                                   state.SetIterationTime(rounds.plugin.back() / 1e9);
                                 }
                               })
      ->UseManualTime()
      ->Iterations(batches.rounds);
  Silent silent;
  benchmark::RunSpecifiedBenchmarks(&silent, ".");
  benchmark::ClearRegisteredBenchmarks();
  results_.rows.push_back({group_, name.method, name.twin, n_, median(rounds.plugin), median(rounds.direct),
                           median(rounds.ratios), name.bar});
}

void Suite::count(const Name& name, const Timer& plugin, const Timer& direct, int calls) {
  const std::string number = std::to_string(results_.rows.size());
  const auto series = [&](const std::string& side, const Timer& timer) {
    const std::string dump = side + " " + number;
    timer(1);  // look-ups are not counted
    CALLGRIND_ZERO_STATS;
    timer(calls);
    CALLGRIND_DUMP_STATS_AT(dump.c_str());
  };
  series("plugin", plugin);
  series("twin", direct);
  results_.rows.push_back({group_, name.method, name.twin, n_, 0, 0, 0, name.bar});
  std::printf("%s|%d|%ld|%s|%s\n", number.c_str(), calls, n_, name.method.c_str(), name.twin.c_str());
}

}  // namespace bench
