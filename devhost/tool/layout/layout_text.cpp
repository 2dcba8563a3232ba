#include <algorithm>
#include <cmath>
#include <optional>

#include "devhost/language/printable.h"
#include "devhost/tool/layout/character_grid.h"
#include "devhost/tool/layout/layout.h"

namespace devhost::tool {
namespace {

/// A character cell is about this many times as high as it is wide.
constexpr double kCellHeight = 2;
/// The drawing fits on the screen together with the command, and one display alone does not fill it.
constexpr double kMostRows = 24;
constexpr double kWidestBox = 40;
constexpr std::size_t kGap = 2;
constexpr const char* kAsciiEllipsis = "~";

class Drawing {
 public:
  Drawing(const Layout& layout, const TextStyle& style)
      : layout_(layout), style_(style), columns_(std::max(style.columns, kFewestColumns)) {}

  std::string draw() {
    if (layout_.boxes.empty() && layout_.undrawn.empty()) {
      return "no displays\n";
    }
    std::string result = layout_.boxes.empty() ? "" : picture();
    const std::string below = legend();
    return result + (result.empty() || below.empty() ? "" : "\n") + below;
  }

 private:
  /// Points per column at which everything fits.
  double pointsPerColumn() const {
    double widest = 0;
    for (const LayoutBox& box : layout_.boxes) {
      widest = std::max(widest, box.bounds.width());
    }
    return std::max({layout_.bounds.width() / static_cast<double>(columns_ - 1),
                     layout_.bounds.height() / kCellHeight / (kMostRows - 1), widest / (kWidestBox - 1)});
  }

  /// The cells of a span's edges: at least two, for an outline.
  static std::pair<std::size_t, std::size_t> edges(double first, double last, double unit, std::size_t count) {
    auto begin = static_cast<std::size_t>(std::lround(first / unit));
    auto end = static_cast<std::size_t>(std::lround(last / unit));
    begin = std::min(begin, count - 2);
    end = std::clamp(end, begin + 1, count - 1);
    return {begin, end};
  }

  std::string picture() {
    const double unit = pointsPerColumn();
    const auto cells = [](double length, double one) {
      return std::max<std::size_t>(static_cast<std::size_t>(std::lround(length / one)) + 1, 2);
    };
    const std::size_t columns = cells(layout_.bounds.width(), unit);
    const std::size_t rows = cells(layout_.bounds.height(), unit * kCellHeight);
    CharacterGrid grid(columns, rows);
    std::vector<CellArea> places;
    std::vector<Area> areas;
    for (const LayoutBox& box : layout_.boxes) {
      const auto [left, right] =
          edges(box.bounds.left - layout_.bounds.left, box.bounds.right - layout_.bounds.left, unit, columns);
      const auto [top, bottom] =
          edges(box.bounds.top - layout_.bounds.top, box.bounds.bottom - layout_.bounds.top, unit * kCellHeight, rows);
      places.push_back({left, top, right, bottom});
      // One cell more: a cover's outline counts as covering, a neighbour's does not.
      areas.push_back({static_cast<double>(left), static_cast<double>(top), static_cast<double>(right) + 1,
                       static_cast<double>(bottom) + 1});
      grid.addBox(places.back());
    }
    for (std::size_t i = 0; i < places.size(); ++i) {
      const CellArea& place = places[i];
      const Area inside{static_cast<double>(place.left) + 1, static_cast<double>(place.top) + 1,
                        static_cast<double>(place.right), static_cast<double>(place.bottom)};
      write(grid, layout_.boxes[i], largestFreePart(inside, std::span(areas).subspan(i + 1)));
    }
    return grid.draw(style_.ascii);
  }

  std::string shown(std::string text) const {
    if (!style_.ascii) {
      return text;
    }
    for (std::size_t at = 0; (at = text.find(kEllipsis, at)) != std::string::npos;) {
      text.replace(at, std::string_view(kEllipsis).size(), kAsciiEllipsis);
    }
    return asciiOnly(text);
  }

  /// Lines in the middle of the free cells.
  void writeLines(CharacterGrid& grid, const std::vector<std::string>& lines, const Area& free) const {
    const auto columns = static_cast<std::size_t>(free.width());
    const auto rows = static_cast<std::size_t>(free.height());
    std::size_t row = static_cast<std::size_t>(free.top) + (rows - lines.size()) / 2;
    for (const std::string& line : lines) {
      const std::size_t width = columnsOf(line);
      grid.addText(static_cast<std::size_t>(free.left) + (columns - width) / 2, row, shown(line), width);
      ++row;
    }
  }

  void write(CharacterGrid& grid, const LayoutBox& box, const Area& free) {
    constexpr double kSize[] = {1};
    const auto label = fitLabel(box, {free, 1, 1, kSize, kSize});
    if (label) {
      writeLines(grid, label->lines, free);
    }
    if (!label || !label->is_complete) {
      legend_.insert(legend_.end(), box.displays.begin(), box.displays.end());
    }
  }

  std::string legend() {
    std::string result = table(legendRows(legend_, layout_));
    for (const std::string& note : overlapNotes(layout_)) {
      result += shortened(note, columns_, ellipsis()) + '\n';
    }
    return result;
  }

  const char* ellipsis() const { return style_.ascii ? kAsciiEllipsis : kEllipsis; }

  /// Rows of cells in columns. In lines that are too long, the name is cut, then the line.
  std::string table(std::vector<std::vector<std::string>> rows) const {
    constexpr std::size_t kName = 2;
    std::vector<std::size_t> widths(6, 0);
    for (auto& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        row[i] = shown(row[i]);
        widths[i] = std::max(widths[i], columnsOf(row[i]));
      }
    }
    std::size_t others = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      others += i != kName && widths[i] > 0 ? widths[i] + kGap : 0;
    }
    const std::size_t for_name = others + kShortestName <= columns_ ? columns_ - others : kShortestName;
    widths[kName] = std::min(widths[kName], for_name);
    std::string result;
    for (auto& row : rows) {
      row[kName] = shortened(row[kName], widths[kName], ellipsis());
      std::string line;
      for (std::size_t i = 0; i < row.size(); ++i) {
        line += widths[i] > 0 ? row[i] + std::string(widths[i] - columnsOf(row[i]) + kGap, ' ') : "";
      }
      line.erase(line.find_last_not_of(' ') + 1);
      result += shortened(line, columns_, ellipsis()) + '\n';
    }
    return result;
  }

  const Layout& layout_;
  const TextStyle& style_;
  const std::size_t columns_;
  std::vector<Display> legend_;
};

}  // namespace

std::string drawText(const Layout& layout, const TextStyle& style) { return Drawing(layout, style).draw(); }

}  // namespace devhost::tool
