// ostrevin-bench: measures the rows of all groups and prints one table. See bench/run.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "groups.h"

namespace bench {
namespace {

std::string format(const char* pattern, double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), pattern, value);
  return text.data();
}

/// Three digits and the unit that suits: "86.4 ns", "1.87 µs".
std::string timeText(double nanoseconds) {
  constexpr std::array kUnits = {" ns", " µs", " ms", " s"};
  std::size_t unit = 0;
  double value = nanoseconds;
  for (; value >= 999.5 && unit + 1 < kUnits.size(); ++unit) {
    value /= 1000;
  }
  return format(value < 9.995 ? "%.2f" : value < 99.95 ? "%.1f" : "%.0f", value) + kUnits[unit];
}

struct Column {
  const char* title;
  const char* rule;
  std::size_t width;
};

constexpr std::array kColumns = {
    Column{"Method", "---", 36}, Column{"With", "---", 23},  Column{"Twin", "---", 44}, Column{"Floor", "--:", 7},
    Column{"Plugin", "--:", 7},  Column{"Twin's", "--:", 7}, Column{"Ratio", "--:", 5}, Column{"Bar", "---", 9},
};

/// In columns of a terminal: bytes that continue a UTF-8 character take none.
std::size_t widthOf(const std::string& text) {
  std::size_t width = 0;
  for (const char byte : text) {
    width += (static_cast<unsigned char>(byte) & 0xC0) == 0x80 ? 0 : 1;
  }
  return width;
}

void printLine(std::ostream& out, const std::array<std::string, kColumns.size()>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t width = widthOf(cells[i]);
    const std::string space(kColumns[i].width > width ? kColumns[i].width - width : 0, ' ');
    const bool is_number = kColumns[i].rule[2] == ':';
    out << "| " << (is_number ? space + cells[i] : cells[i] + space) << ' ';
  }
  out << "|" << std::endl;
}

/// Prints a Markdown table, each row as soon as it is measured, and the machine and what failed to the error stream. A
/// row whose ratio is above its bar has "over" behind the bar.
class TableReporter final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  int over() const { return over_; }
  int failed() const { return failed_; }

 private:
  int over_ = 0;
  int failed_ = 0;
};

bool TableReporter::ReportContext(const Context& context) {
  PrintBasicContext(&GetErrorStream(), context);
  std::array<std::string, kColumns.size()> titles;
  std::array<std::string, kColumns.size()> rules;
  for (std::size_t i = 0; i < kColumns.size(); ++i) {
    titles[i] = kColumns[i].title;
    rules[i] = kColumns[i].rule;
  }
  printLine(GetOutputStream(), titles);
  printLine(GetOutputStream(), rules);
  return true;
}

/// Why a run failed, or null. The library's members for it were renamed in version 1.8.
template <typename Run>
const std::string* failureOf(const Run& run) {
  if constexpr (requires { run.error_occurred; }) {
    return run.error_occurred ? &run.error_message : nullptr;
  } else {
    return run.skipped ? &run.skip_message : nullptr;
  }
}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (const std::string* const failure = failureOf(run)) {
      GetErrorStream() << run.run_name.function_name << ": " << *failure << std::endl;
      ++failed_;
      continue;
    }
    std::istringstream name(run.run_name.function_name);  // METHOD/WITH/TWIN
    std::array<std::string, kColumns.size()> cells;
    for (std::size_t i = 0; i < 3; ++i) {
      std::getline(name, cells[i], '/');
    }
    const double ratio = run.counters.at("ratio");
    const double bar = run.counters.at("bar");
    const bool is_over = bar > 0 && ratio > bar;
    const double floor = run.counters.at("floor_ns");
    cells[3] = floor > 0 ? timeText(floor) : "-";
    cells[4] = timeText(run.GetAdjustedRealTime() - floor);
    cells[5] = timeText(run.counters.at("twin_ns"));
    cells[6] = format("%.2f", ratio);
    cells[7] = (bar > 0 ? format("%.2f", bar) : "-") + (is_over ? " over" : "");
    printLine(GetOutputStream(), cells);
    over_ += is_over ? 1 : 0;
  }
}

void printHelp() {
  std::puts(
      "bench/run [OPTIONS]\n"
      "Measures every method of the plugin beside a twin, the same work done without the plugin, and prints a table.\n"
      "A row whose ratio is above its bar is marked \"over\".\n"
      "\n"
      "  --quick                   few rounds and small sizes: shows that everything runs; its times mean nothing\n"
      "  --strict                  exit status 1 when a row is over its bar\n"
      "  --benchmark_filter=REGEX  only the rows whose name matches\n"
      "  --benchmark_list_tests    print the names of the rows, METHOD/WITH/TWIN, and measure nothing\n"
      "  --benchmark_out=FILE      write the results to a file too, as JSON, in nanoseconds\n"
      "  --benchmark_out_format=csv\n"
      "\n"
      "bench/run --count           count the instructions of calls about scripted displays, by callgrind\n"
      "bench/run --doc [FILE.md]   measure, then renew the rows of docs/performance.md and its plot\n"
      "\n"
      "Exit status: 0 done; 1 a row failed, no row matches or, with --strict, one is over its bar.");
}

struct Options {
  bool quick = false;
  bool strict = false;
};

/// False for an option that does not exist, which is reported.
bool readOptions(int count, char** texts, Options& options) {
  for (int i = 1; i < count; ++i) {
    if (std::strcmp(texts[i], "--quick") == 0) {
      options.quick = true;
    } else if (std::strcmp(texts[i], "--strict") == 0) {
      options.strict = true;
    } else {
      std::cerr << "bench: unknown option " << texts[i] << '\n';
      return false;
    }
  }
  return true;
}

int main(int count, char** texts) {
  benchmark::Initialize(&count, texts, printHelp);
  Options options;
  if (!readOptions(count, texts, options)) {
    return 1;
  }
  benchmark::AddCustomContext("compiler", __VERSION__);
  benchmark::AddCustomContext("build_type", OSTREVIN_BUILD_TYPE);
  const Suite suite(options.quick);
  LiveDesktop live;
  // In this order: a change of the live desktop lasts, and long lists of a display's profiles leave a scattered heap,
  // in which lists of files take longer.
  addProcesses(suite, live);
  addNames(suite, live);
  addProfileLists(suite);
  addDisplayProfiles(suite, live);
  addGeometry(suite, live);
  addProfileFiles(suite);
  addText(suite);
  TableReporter table;
  if (benchmark::RunSpecifiedBenchmarks(&table) == 0) {
    return 1;  // the filter matches no row, which is reported
  }
  if (table.over() > 0) {
    std::cerr << "Rows over their bars: " << table.over() << '\n';
  }
  return table.failed() > 0 || (options.strict && table.over() > 0) ? 1 : 0;
}

}  // namespace
}  // namespace bench

int main(int count, char** texts) { return bench::main(count, texts); }
