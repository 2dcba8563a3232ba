#include "report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace bench {
namespace {

std::string format(const char* pattern, double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), pattern, value);
  return text.data();
}

/// Three digits, at least.
std::string threeDigits(double value) {
  if (value < 10) {
    return format("%.2f", value);
  }
  return format(value < 100 ? "%.1f" : "%.0f", value);
}

}  // namespace

int shortfalls(const Results& results) {
  return static_cast<int>(
      std::count_if(results.rows.begin(), results.rows.end(), [](const Row& row) { return row.isOver(); }) +
      std::count_if(results.instructions.begin(), results.instructions.end(),
                    [](const Instructions& row) { return row.isOver(); }));
}

std::string timeText(double nanoseconds) {
  constexpr double kNextUnit = 1000;
  double value = nanoseconds;
  for (const char* const unit : {"ns", "µs", "ms"}) {
    if (value < kNextUnit) {
      return threeDigits(value) + " " + unit;
    }
    value /= kNextUnit;
  }
  return threeDigits(value) + " s";
}

std::string ratioText(double ratio) { return format("%.2f", ratio); }

std::string barText(double bar) { return bar > 0 ? ratioText(bar) : "-"; }

void printJson(std::ostream& out, const Results& results) {
  using Json = nlohmann::ordered_json;
  Json document{{"machine", results.machine}, {"notes", results.notes}, {"shortfalls", shortfalls(results)}};
  document["rows"] = Json::array();
  for (const Row& row : results.rows) {
    document["rows"].push_back({{"group", row.group},
                                {"method", row.method},
                                {"twin", row.twin},
                                {"n", row.n},
                                {"plugin_ns", row.plugin},
                                {"twin_ns", row.direct},
                                {"ratio", row.ratio},
                                {"bar", row.bar > 0 ? Json(row.bar) : Json(nullptr)},
                                {"over", row.isOver()}});
  }
  document["instructions"] = Json::array();
  for (const Instructions& row : results.instructions) {
    document["instructions"].push_back({{"method", row.method},
                                        {"twin", row.twin},
                                        {"n", row.n},
                                        {"plugin", row.plugin},
                                        {"twin", row.direct},
                                        {"most_more", row.most_more > 0 ? Json(row.most_more) : Json(nullptr)},
                                        {"over", row.isOver()}});
  }
  document["start"] = Json::array();
  for (const Phase& phase : results.start) {
    document["start"].push_back({{"part", phase.name}, {"ms", phase.milliseconds}});
  }
  out << document.dump(2) << '\n';
}

void replaceMeasured(const std::string& path, const std::string& text) {
  static const std::string kBegin = "<!-- measured -->\n";
  static const std::string kEnd = "<!-- end -->";
  std::ifstream in(path);
  std::stringstream old;
  old << in.rdbuf();
  const std::string whole = old.str();
  const auto begin = whole.find(kBegin);
  const auto end = whole.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) {
    throw std::runtime_error(path + " has no lines to put the results between");
  }
  std::ofstream out(path);
  out << whole.substr(0, begin + kBegin.size()) << '\n' << text << '\n' << whole.substr(end);
  if (!out.flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

}  // namespace bench
