// Rows of the benchmark: a call of the plugin beside its twin, the same work done without the plugin. Both run in short
// batches that take turns, so that other load on the computer falls on both alike. Google Benchmark runs and reports
// the rows. One thread.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "devhost/calling/native_call.h"

namespace bench {

/// Nanoseconds that a call of a function takes.
template <typename Call>
double nanoseconds(Call&& call) {
  const auto begin = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - begin).count();
}

/// Makes a number of calls and returns the nanoseconds for one.
using Timer = std::function<double(int calls)>;

/// Times a batch as a whole, within one autorelease pool, as a turn of a host's event loop is.
template <typename Call>
Timer timerOf(Call call) {
  return [call](int calls) mutable {
    const devhost::AutoreleasePool pool;
    return nanoseconds([&] {
             for (int i = 0; i < calls; ++i) {
               call();
             }
           }) /
           calls;
  };
}

/// Keeps the compiler from leaving out what makes the value.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

struct Batches {
  int rounds = 401;
  int calls = 100;  ///< in each batch
};

/// The texts name the row: METHOD/N WHAT/TWIN. None of them contains a "/".
struct Row {
  std::string method;
  long n = 0;        ///< how many of `what` there are; 0: not in the name
  std::string what;  ///< such as "live displays" or "files"
  std::string twin;
  double bar = 0;  ///< the greatest ratio that the row should have; 0: none
};

struct Pair {
  Timer plugin;
  Timer twin;
  Batches batches;
  /// What a call of the plugin cannot be without, and its twin can: only the time beyond it counts. Null: nothing.
  Timer floor = nullptr;
};

template <typename Plugin, typename Twin>
Pair pairOf(Plugin plugin, Twin twin, Batches batches = {}) {
  return {timerOf(std::move(plugin)), timerOf(std::move(twin)), batches};
}

class Suite {
 public:
  /// A quick suite has few rounds and small sizes; its times mean nothing.
  explicit Suite(bool quick) : quick_(quick) {}

  /// The sizes to measure with.
  std::vector<long> sizes(std::vector<long> all) const;

  /// Registers a row. `prepare` is called when the row's turn comes: it sets up what the row needs, in particular the
  /// desktop in use, and checks that both sides do their work. What it throws is reported as the row's failure.
  void add(const Row& row, std::function<Pair()> prepare) const;

 private:
  bool quick_;
};

}  // namespace bench
