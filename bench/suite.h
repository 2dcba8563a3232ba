// Runs pairs, a call of the plugin and its twin, side by side: in short batches that take turns, so that whatever else
// the computer does falls on both alike. Google Benchmark drives the rounds. One thread.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "results.h"
#include "timing.h"

namespace bench {

struct Batches {
  int rounds = 401;
  int calls = 100;  ///< in each batch
};

/// What a pair is called, and the greatest ratio that it should have; 0: none is set.
struct Name {
  std::string method;
  std::string twin;
  double bar = 0;
};

class Suite {
 public:
  enum class Mode {
    kFull,
    kQuick,  ///< few rounds, for a try whether everything works
    kCount,  ///< no times: each pair is a series for callgrind
  };
  explicit Suite(Mode mode) : mode_(mode) {}

  Mode mode() const { return mode_; }
  bool isQuick() const { return mode_ != Mode::kFull; }
  /// The sizes to measure with; a quick run leaves the large ones out.
  std::vector<long> sizes(std::vector<long> all) const;

  /// The rows that follow belong to this group, and are about `n` of what it counts.
  void begin(std::string group, long n);

  /// A row for two functions, called in batches of equal size.
  template <typename Plugin, typename Direct>
  void compare(const Name& name, Plugin plugin, Direct direct, Batches batches = {}) {
    compareTimers(name, timerOf(std::move(plugin)), timerOf(std::move(direct)), batches);
  }
  /// The same for two that take their times themselves.
  void compareTimers(const Name& name, Timer plugin, Timer direct, Batches batches);

  void note(std::string text) { results_.notes.push_back(std::move(text)); }
  Results& results() { return results_; }

 private:
  void time(const Name& name, const Timer& plugin, const Timer& direct, Batches batches);
  void count(const Name& name, const Timer& plugin, const Timer& direct, int calls);

  Mode mode_;
  std::string group_;
  long n_ = 0;
  Results results_;
};

}  // namespace bench
