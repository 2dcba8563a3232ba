// The plot of how costs grow: two diagrams, one above the other, each with logarithmic axes and a label at the end of
// every line.
#include <algorithm>
#include <cmath>
#include <sstream>

#include "groups.h"
#include "report.h"

namespace bench {
namespace {

struct Point {
  double n = 0;
  double nanoseconds = 0;
};

struct Line {
  std::string label;
  std::string style;  ///< the line's class in the style sheet
  std::vector<Point> points;
};

struct Diagram {
  std::string title;
  std::string axis;
  std::vector<Line> lines;
};

// The whole, and the rectangle of one diagram's grid within its part.
constexpr double kWidth = 860;
constexpr double kPartHeight = 400;
constexpr double kLeft = 80;
constexpr double kRight = 590;
constexpr double kTop = 60;
constexpr double kBottom = 340;
constexpr double kLabelHeight = 17;

constexpr const char* kStyle = R"(<style>
  text { font: 13px sans-serif; fill: #1f2328; }
  .title { font-weight: bold; font-size: 15px; }
  .grid { stroke: #d0d7de; stroke-width: 1; }
  .back { fill: #ffffff; }
  path { fill: none; stroke-width: 2; }
  .c0 { stroke: #0550ae; } .c1 { stroke: #bc4c00; } .c2 { stroke: #1a7f37; }
  .c3 { stroke: #8250df; } .c4 { stroke: #9a6700; } .c5 { stroke: #cf222e; }
  @media (prefers-color-scheme: dark) {
    text { fill: #e6edf3; }
    .grid { stroke: #30363d; }
    .back { fill: #0d1117; }
    .c0 { stroke: #79c0ff; } .c1 { stroke: #ffa657; } .c2 { stroke: #7ee787; }
    .c3 { stroke: #d2a8ff; } .c4 { stroke: #e3b341; } .c5 { stroke: #ff7b72; }
  }
</style>
)";

constexpr int kColours = 6;

/// One line for each method of the group, in the order of the rows; of the same method measured twice, the first.
std::vector<Line> pluginLines(const Results& results, const std::string& group) {
  std::vector<Line> lines;
  for (const Row& row : results.rows) {
    if (row.group != group || row.method.find("for one profile") != std::string::npos || row.method == "GetCGRect" ||
        row.method == "the name cache") {
      continue;  // said by another line
    }
    auto line = std::find_if(lines.begin(), lines.end(), [&](const Line& known) { return known.label == row.method; });
    if (line == lines.end()) {
      lines.push_back({row.method, "c" + std::to_string(lines.size() % kColours), {}});
      line = lines.end() - 1;
    }
    const auto known = std::find_if(line->points.begin(), line->points.end(),
                                    [&](const Point& point) { return point.n == static_cast<double>(row.n); });
    if (known == line->points.end()) {
      line->points.push_back({static_cast<double>(row.n), row.plugin});
    }
  }
  return lines;
}

/// A line of the twin's times.
Line twinLine(const Results& results, const std::string& group, const std::string& method, const std::string& label,
              const std::string& style) {
  Line line{label, style, {}};
  for (const Row& row : results.rows) {
    if (row.group == group && row.method == method) {
      line.points.push_back({static_cast<double>(row.n), row.direct});
    }
  }
  return line;
}

struct Range {
  double low = 1;
  double high = 10;  ///< both powers of ten

  double place(double value, double from, double to) const {
    return from + (std::log10(value) - std::log10(low)) / (std::log10(high) - std::log10(low)) * (to - from);
  }
};

Range rangeOf(const Diagram& diagram, double Point::*member) {
  double least = INFINITY;
  double greatest = 0;
  for (const Line& line : diagram.lines) {
    for (const Point& point : line.points) {
      least = std::min(least, point.*member);
      greatest = std::max(greatest, point.*member);
    }
  }
  Range range;
  range.low = std::pow(10, std::floor(std::log10(least)));
  range.high = std::max(range.low * 10, std::pow(10, std::ceil(std::log10(greatest))));
  return range;
}

std::string number(double value) {
  std::ostringstream text;
  text.precision(1);
  text << std::fixed << value;
  return text.str();
}

/// 1 µs, 10 µs: a power of ten.
std::string roundTimeText(double nanoseconds) {
  const char* const units[] = {"ns", "µs", "ms", "s"};
  int unit = 0;
  for (; nanoseconds >= 1000 && unit < 3; ++unit) {
    nanoseconds /= 1000;
  }
  return std::to_string(std::lround(nanoseconds)) + " " + units[unit];
}

/// 10,000.
std::string grouped(long value) {
  std::string text = std::to_string(value);
  for (auto end = static_cast<std::ptrdiff_t>(text.size()) - 3; end > 0; end -= 3) {
    text.insert(static_cast<std::size_t>(end), ",");
  }
  return text;
}

void text(std::ostream& out, double x, double y, const std::string& what, const std::string& attributes = {}) {
  out << "<text x=\"" << number(x) << "\" y=\"" << number(y) << "\" " << attributes << ">" << what << "</text>\n";
}

void gridLine(std::ostream& out, double x1, double y1, double x2, double y2) {
  out << "<line class=\"grid\" x1=\"" << number(x1) << "\" y1=\"" << number(y1) << "\" x2=\"" << number(x2)
      << "\" y2=\"" << number(y2) << "\"/>\n";
}

void drawGrid(std::ostream& out, const Diagram& diagram, const Range& counts, const Range& times) {
  for (double n = counts.low; n <= counts.high * 1.01; n *= 10) {
    const double x = counts.place(n, kLeft, kRight);
    gridLine(out, x, kTop, x, kBottom);
    text(out, x, kBottom + 20, grouped(std::lround(n)), "text-anchor=\"middle\"");
  }
  for (double time = times.low; time <= times.high * 1.01; time *= 10) {
    const double y = times.place(time, kBottom, kTop);
    gridLine(out, kLeft, y, kRight, y);
    text(out, kLeft - 8, y + 4, roundTimeText(time), "text-anchor=\"end\"");
  }
  text(out, kLeft, kTop - 25, diagram.title, "class=\"title\"");
  text(out, (kLeft + kRight) / 2, kBottom + 42, diagram.axis, "text-anchor=\"middle\"");
}

/// Labels in the order of the lines' ends, moved apart where they would cover one another.
std::vector<double> labelPlaces(const std::vector<double>& ends) {
  std::vector<std::size_t> order(ends.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    order[i] = i;
  }
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return ends[a] < ends[b]; });
  std::vector<double> places = ends;
  double lowest = kTop;
  for (const std::size_t i : order) {
    places[i] = std::max(places[i], lowest);
    lowest = places[i] + kLabelHeight;
  }
  // What was pushed below the grid goes up again, with what is above it.
  double highest = kBottom;
  for (auto i = order.rbegin(); i != order.rend(); ++i) {
    places[*i] = std::min(places[*i], highest);
    highest = places[*i] - kLabelHeight;
  }
  return places;
}

void drawLines(std::ostream& out, const Diagram& diagram, const Range& counts, const Range& times) {
  std::vector<double> ends;
  for (const Line& line : diagram.lines) {
    out << "<path class=\"" << line.style << "\" d=\"";
    double y = kBottom;
    for (std::size_t i = 0; i < line.points.size(); ++i) {
      y = times.place(line.points[i].nanoseconds, kBottom, kTop);
      out << (i == 0 ? "M" : " L") << number(counts.place(line.points[i].n, kLeft, kRight)) << "," << number(y);
    }
    out << "\"/>\n";
    ends.push_back(y);
  }
  const std::vector<double> places = labelPlaces(ends);
  constexpr double kLeader = 22;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    const double x =
        diagram.lines[i].points.empty() ? kRight : counts.place(diagram.lines[i].points.back().n, kLeft, kRight);
    out << "<path class=\"" << diagram.lines[i].style << "\" style=\"stroke-width: 1\" d=\"M" << number(x) << ","
        << number(ends[i]) << " L" << number(kRight + kLeader) << "," << number(places[i]) << "\"/>\n";
    text(out, kRight + kLeader + 4, places[i] + 4, diagram.lines[i].label);
  }
}

}  // namespace

std::string plotSvg(const Results& results) {
  Diagram displays{"A call about the last display, scripted desktop", "displays", pluginLines(results, kDisplayGrowth)};
  Diagram profiles{"Lists of profiles", "profiles", pluginLines(results, kProfileLists)};
  profiles.lines.push_back(twinLine(results, kProfileLists, "first listing", "twin: a loop of lcms2", "c5"));
  for (Line& line : pluginLines(results, kDisplayProfiles)) {
    line.style = "c3";
    profiles.lines.push_back(std::move(line));
  }
  std::ostringstream out;
  const double height = 2 * kPartHeight;
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth << " " << height << "\" width=\""
      << kWidth << "\" height=\"" << height << "\" role=\"img\">\n<title>How the cost of a call grows</title>\n"
      << kStyle << "<rect class=\"back\" width=\"100%\" height=\"100%\"/>\n";
  double offset = 0;
  for (const Diagram& diagram : {displays, profiles}) {
    const Range counts = rangeOf(diagram, &Point::n);
    const Range times = rangeOf(diagram, &Point::nanoseconds);
    out << "<g transform=\"translate(0 " << number(offset) << ")\">\n";
    drawGrid(out, diagram, counts, times);
    drawLines(out, diagram, counts, times);
    out << "</g>\n";
    offset += kPartHeight;
  }
  out << "</svg>\n";
  return out.str();
}

}  // namespace bench
