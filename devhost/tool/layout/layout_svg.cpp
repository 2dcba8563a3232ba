#include <algorithm>
#include <cmath>
#include <optional>

#include "devhost/language/printable.h"
#include "devhost/language/value.h"
#include "devhost/tool/layout/layout.h"

namespace devhost::tool {
namespace {

// Lengths in the picture's own unit, which is a pixel where nothing enlarges it.
constexpr double kMargin = 16;
constexpr double kWidest = 960;
constexpr double kHighest = 640;
constexpr double kLargestBox = 420;
constexpr double kNarrowestPicture = 480;
constexpr double kPadding = 6;
constexpr double kLegendSize = 12;
constexpr double kLineHeight = 1.3;  ///< of the size of the letters
/// A character of a monospaced font takes 0.6 of its size; wider fonts a little more.
constexpr double kColumnWidth = 0.62;
constexpr double kLabelSizes[] = {14, 12, 11, 10};
constexpr double kNumberSizes[] = {16, 12, 10, 8, 6, 4};

/// For readers with a preference; the colours in the attributes are readable on any page.
constexpr const char* kStyle =
    "  <style>\n"
    "    @media (prefers-color-scheme: light) {\n"
    "      .display rect { fill: #e3edfa; stroke: #3f6298; } .display text { fill: #14263d; }\n"
    "      .main rect { fill: #ffefc9; stroke: #9a6b06; } .main text { fill: #33260a; }\n"
    "      .legend text { fill: #3d3d3d; }\n"
    "    }\n"
    "    @media (prefers-color-scheme: dark) {\n"
    "      .display rect { fill: #20324c; stroke: #86abe0; } .display text { fill: #e8f0fb; }\n"
    "      .main rect { fill: #483a14; stroke: #e3b554; } .main text { fill: #fdf3da; }\n"
    "      .legend text { fill: #cfcfcf; }\n"
    "    }\n"
    "  </style>\n";
constexpr const char* kDisplayColours = R"(fill="#d6e3f4" stroke="#4f78b3")";
constexpr const char* kMainColours = R"(fill="#fbe3ab" stroke="#b07a0c")";
constexpr const char* kLabelColour = "#14263d";
constexpr const char* kLegendColour = "#757575";

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

/// To a thousandth, independent of the locale.
std::string lengthText(double length) { return numberText(std::round(length * 1000) / 1000); }

std::string attribute(const char* name, const std::string& value) {
  return " " + std::string(name) + "=\"" + escaped(value) + "\"";
}

std::string areaAttributes(const Area& area) {
  return attribute("x", lengthText(area.left)) + attribute("y", lengthText(area.top)) +
         attribute("width", lengthText(area.width())) + attribute("height", lengthText(area.height()));
}

std::string textElement(double x, double y, const std::string& text, bool is_bold = false) {
  return "<text" + attribute("x", lengthText(x)) + attribute("y", lengthText(y)) +
         (is_bold ? " font-weight=\"bold\"" : "") + ">" + escaped(text) + "</text>";
}

class Picture {
 public:
  explicit Picture(const Layout& layout) : layout_(layout), unit_(unitFor(layout)) {}

  std::string draw() {
    std::vector<Area> areas;
    for (const LayoutBox& box : layout_.boxes) {
      areas.push_back(toPicture(box.bounds));
    }
    const Area all = toPicture(layout_.bounds);
    width_ = std::max(all.right + kMargin, kNarrowestPicture);
    std::string rectangles;
    for (std::size_t i = 0; i < areas.size(); ++i) {
      rectangles += boxElement(i, areas);
    }
    double bottom = layout_.boxes.empty() ? 0 : all.bottom;
    const std::string below = legend(bottom);
    const std::string size = lengthText(width_) + " " + lengthText(bottom + kMargin);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\"" +
           attribute("width", lengthText(width_)) + attribute("height", lengthText(bottom + kMargin)) +
           attribute("viewBox", "0 0 " + size) +
           attribute("font-family", "ui-monospace, Menlo, 'DejaVu Sans Mono', monospace") +
           " text-anchor=\"middle\">\n  <title>Arrangement of the displays</title>\n" + kStyle + rectangles + below +
           "</svg>\n";
  }

 private:
  /// Picture units to the point.
  static double unitFor(const Layout& layout) {
    double unit = 1;
    if (!layout.boxes.empty()) {
      unit =
          std::min((kWidest - 2 * kMargin) / layout.bounds.width(), (kHighest - 2 * kMargin) / layout.bounds.height());
    }
    for (const LayoutBox& box : layout.boxes) {
      unit = std::min(unit, kLargestBox / std::max(box.bounds.width(), box.bounds.height()));
    }
    return unit;
  }

  Area toPicture(const Area& points) const {
    const auto x = [this](double of) { return (of - layout_.bounds.left) * unit_ + kMargin; };
    const auto y = [this](double of) { return (of - layout_.bounds.top) * unit_ + kMargin; };
    return {x(points.left), y(points.top), x(points.right), y(points.bottom)};
  }

  std::string boxElement(std::size_t index, const std::vector<Area>& areas) {
    const LayoutBox& box = layout_.boxes[index];
    const Area& area = areas[index];
    const bool is_above = std::any_of(areas.begin(), areas.begin() + static_cast<std::ptrdiff_t>(index),
                                      [&](const Area& below) { return overlap(area, below); });
    std::string element = std::string("  <g class=\"display") + (box.is_main ? " main" : "") + "\"" + dataOf(box) +
                          ">\n    <title>" + escaped(titleOf(box)) + "</title>\n    <rect" + areaAttributes(area) +
                          " " + (box.is_main ? kMainColours : kDisplayColours) +
                          attribute("stroke-width", box.is_main ? "2.5" : "1.5") +
                          // The edges of a covered box show through.
                          (is_above ? " fill-opacity=\"0.88\"" : "") + "/>\n";
    Area part = largestFreePart(area, std::span(areas).subspan(index + 1));
    part = {part.left + kPadding, part.top + kPadding / 2, part.right - kPadding, part.bottom - kPadding / 2};
    const auto label = fitLabel(box, {part, kColumnWidth, kLineHeight, kLabelSizes, kNumberSizes});
    if (!label || !label->is_complete) {
      legend_.insert(legend_.end(), box.displays.begin(), box.displays.end());
    }
    if (label) {
      element += labelElement(*label, part, area, index);
    }
    return element + "  </g>\n";
  }

  /// The lines in the middle of `part`, clipped to the box.
  static std::string labelElement(const Label& label, const Area& part, const Area& box, std::size_t index) {
    const std::string clip = "box" + std::to_string(index);
    const double height = kLineHeight * label.size;
    const double middle = (part.left + part.right) / 2;
    const auto lines = static_cast<double>(label.lines.size());
    // The base line of the first of the lines, whose letters reach from 0.8 of their size above it to 0.2 below.
    double y = (part.top + part.bottom - lines * height) / 2 + (height - label.size) / 2 + 0.8 * label.size;
    std::string element = "    <clipPath id=\"" + clip + "\"><rect" + areaAttributes(box) +
                          "/></clipPath>\n    <g clip-path=\"url(#" + clip +
                          ")\" stroke=\"none\" xml:space=\"preserve\"" + attribute("fill", kLabelColour) +
                          attribute("font-size", lengthText(label.size)) + ">\n";
    for (const std::string& line : label.lines) {
      element += "      " + textElement(middle, y, line, &line == label.lines.data()) + "\n";
      y += height;
    }
    return element + "    </g>\n";
  }

  static std::string dataOf(const LayoutBox& box) {
    std::string numbers;
    std::string scales;
    for (const Display& display : box.displays) {
      numbers += (numbers.empty() ? "" : " ") + std::to_string(display.number);
      scales += (scales.empty() ? "" : " ") + numberText(display.scale);
    }
    return attribute("data-numbers", numbers) + attribute("data-scales", scales) +
           attribute("data-x", numberText(box.bounds.left)) + attribute("data-y", numberText(box.bounds.top)) +
           attribute("data-width", numberText(box.displays.front().width)) +
           attribute("data-height", numberText(box.displays.front().height));
  }

  /// The tooltip.
  static std::string titleOf(const LayoutBox& box) {
    std::string title;
    for (const Display& display : box.displays) {
      title += title.empty() ? "" : "; ";
      for (const std::string& cell : legendRow(display)) {
        title += (cell.empty() || title.empty() || title.back() == ' ' ? "" : ", ") + cell;
      }
    }
    return title;
  }

  /// Below the picture. `bottom` is the end of the picture, and is set to that of the legend.
  std::string legend(double& bottom) {
    std::vector<std::string> lines;
    for (const auto& row : legendRows(legend_, layout_)) {
      lines.push_back(legendLine(row));
    }
    const auto notes = overlapNotes(layout_);
    lines.insert(lines.end(), notes.begin(), notes.end());
    if (layout_.boxes.empty() && layout_.undrawn.empty()) {
      lines.emplace_back("no displays");
    }
    if (lines.empty()) {
      return {};
    }
    const double height = kLineHeight * kLegendSize;
    std::string element = R"(  <g class="legend" text-anchor="start" xml:space="preserve")" +
                          attribute("fill", kLegendColour) + attribute("font-size", lengthText(kLegendSize)) + ">\n";
    bottom += kMargin / 2;
    for (const std::string& line : lines) {
      bottom += height;
      element +=
          "    " + textElement(kMargin, bottom - 0.2 * height, shortened(line, legendColumns(), kEllipsis)) + "\n";
    }
    return element + "  </g>\n";
  }

  std::size_t legendColumns() const {
    return static_cast<std::size_t>((width_ - 2 * kMargin) / kColumnWidth / kLegendSize);
  }

  /// Cuts the name of a line that is too long.
  std::string legendLine(const std::vector<std::string>& cells) const {
    const std::string before = cells[0] + (cells[1].empty() ? "" : " " + cells[1]) + ": ";
    const std::string after = ", " + cells[3] + ", " + cells[4] + (cells.size() > 5 ? ", " + cells[5] : "");
    const std::size_t others = columnsOf(before) + columnsOf(after);
    const std::size_t left = legendColumns() > others + kShortestName ? legendColumns() - others : kShortestName;
    return before + shortened(cells[2], left, kEllipsis) + after;
  }

  const Layout& layout_;
  const double unit_;
  double width_ = 0;
  std::vector<Display> legend_;
};

}  // namespace

std::string drawSvg(const Layout& layout) { return Picture(layout).draw(); }

}  // namespace devhost::tool
