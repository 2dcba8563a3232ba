// What a run of the benchmarks found out, before it is printed.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// A call through the plugin beside its twin, which does the same without the plugin.
struct Row {
  std::string group;
  std::string method;
  std::string twin;   ///< what the twin is
  long n = 0;         ///< how many there are of what the group is about
  double plugin = 0;  ///< median nanoseconds
  double direct = 0;  ///< median nanoseconds of the twin
  double ratio = 0;   ///< median of the rounds' ratios
  double bar = 0;     ///< the greatest ratio that it should have; 0: none was set

  bool isOver() const { return bar > 0 && ratio > bar; }
};

/// Instructions for one call, counted by callgrind.
struct Instructions {
  std::string method;
  std::string twin;
  long n = 0;
  double plugin = 0;
  double direct = 0;
  double most_more = 0;  ///< how many more than the twin there may be; 0: none was set

  bool isOver() const { return most_more > 0 && plugin - direct > most_more + 0.5; }
};

/// A part of the start of a process, in median milliseconds.
struct Phase {
  std::string name;
  double milliseconds = 0;
};

struct Results {
  std::vector<std::string> machine;  ///< one line each
  std::vector<std::string> notes;
  std::vector<Row> rows;
  std::vector<Instructions> instructions;
  std::vector<Phase> start;
};

/// How many rows are over their bars.
int shortfalls(const Results& results);

}  // namespace bench
