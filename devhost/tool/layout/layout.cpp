#include "devhost/tool/layout/layout.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "devhost/language/printable.h"
#include "devhost/language/value.h"

namespace devhost::tool {
namespace {

/// Coordinates beyond this are not drawn: at their scale nothing else would be visible.
constexpr double kFarthest = 1e7;
/// With more covers a free part is not searched for.
constexpr std::size_t kMostCovers = 8;
constexpr std::size_t kMostNotes = 10;

bool isDrawable(const Display& display) {
  const double edges[] = {display.x, display.y, display.x + display.width, display.y + display.height};
  return display.width > 0 && display.height > 0 && std::all_of(std::begin(edges), std::end(edges), [](double edge) {
           return std::isfinite(edge) && std::abs(edge) <= kFarthest;
         });
}

double sizeOf(const Area& area) { return area.width() * area.height(); }

Area unionOf(const Area& a, const Area& b) {
  return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

/// One text for each display, without repetitions, in order.
template <typename Text>
std::vector<std::string> each(const LayoutBox& box, Text text) {
  std::vector<std::string> texts;
  for (const Display& display : box.displays) {
    const std::string one = text(display);
    if (std::find(texts.begin(), texts.end(), one) == texts.end()) {
      texts.push_back(one);
    }
  }
  return texts;
}

std::string joined(const std::vector<std::string>& texts, const char* between) {
  std::string result;
  for (const std::string& text : texts) {
    result += (result.empty() ? "" : between) + text;
  }
  return result;
}

std::string sizeText(const Display& display) { return numberText(display.width) + " x " + numberText(display.height); }

std::string positionText(const Display& display) {
  return "at " + numberText(display.x) + ", " + numberText(display.y);
}

std::string numbersText(const LayoutBox& box) {
  return joined(each(box, [](const Display& one) { return std::to_string(one.number) + (isMain(one) ? " main" : ""); }),
                " + ");
}

std::string scalesText(const LayoutBox& box) {
  return "scale " + joined(each(box, [](const Display& one) { return numberText(one.scale); }), " + ");
}

/// The lines of a label in several forms, from the most readable to the smallest. Names are cut to `longest_name`
/// columns.
std::vector<std::vector<std::string>> labels(const LayoutBox& box, std::size_t longest_name) {
  const std::string numbers = numbersText(box);
  const std::string scales = scalesText(box);
  const std::string size = sizeText(box.displays.front());
  const std::string position = positionText(box.displays.front());
  std::vector<std::string> names = each(box, [](const Display& display) { return printable(display.name); });
  for (std::string& name : names) {
    name = shortened(name, longest_name, kEllipsis);
  }
  const auto label = [&](const std::string& first, const std::vector<std::string>& last) {
    std::vector<std::string> lines{first};
    lines.insert(lines.end(), names.begin(), names.end());
    lines.insert(lines.end(), last.begin(), last.end());
    return lines;
  };
  std::string size_and_position = size;
  size_and_position.append(" ").append(position);
  std::string numbers_and_scales = numbers;
  numbers_and_scales.append(", ").append(scales);
  return {label(numbers, {size_and_position, scales}), label(numbers, {size, position, scales}),
          label(numbers_and_scales, {size_and_position}), label(numbers_and_scales, {size, position})};
}

/// The numbers alone, from the most readable form to the shortest.
std::vector<std::string> shortLabels(const LayoutBox& box) {
  const auto brief = [&](const char* mark, const char* between) {
    return joined(each(box, [&](const Display& one) { return std::to_string(one.number) + (isMain(one) ? mark : ""); }),
                  between);
  };
  return {numbersText(box), brief("*", " + "), brief("*", "+"), brief("", "+")};
}

bool fits(const std::vector<std::string>& lines, double size, const LabelSpace& space) {
  std::size_t columns = 0;
  for (const std::string& line : lines) {
    columns = std::max(columns, columnsOf(line));
  }
  return static_cast<double>(columns) * space.column_width * size <= space.area.width() &&
         static_cast<double>(lines.size()) * space.line_height * size <= space.area.height();
}

std::vector<double> edgesWithin(double first, double last, std::vector<double> edges) {
  std::erase_if(edges, [=](double edge) { return edge <= first || edge >= last; });
  edges.push_back(first);
  edges.push_back(last);
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  return edges;
}

/// Draws the main display's box last unless that covers another one, to keep its outline whole beside its neighbours'.
void raiseMain(std::vector<LayoutBox>& boxes) {
  const auto main = std::find_if(boxes.begin(), boxes.end(), [](const LayoutBox& box) { return box.is_main; });
  if (main != boxes.end() &&
      std::none_of(main + 1, boxes.end(), [&](const LayoutBox& box) { return overlap(box.bounds, main->bounds); })) {
    std::rotate(main, main + 1, boxes.end());
  }
}

}  // namespace

bool overlap(const Area& a, const Area& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

Layout arrangeLayout(const std::vector<Display>& displays) {
  Layout layout;
  std::map<std::tuple<double, double, double, double>, std::size_t> known;
  for (const Display& display : displays) {
    if (!isDrawable(display)) {
      layout.undrawn.push_back(display);
      continue;
    }
    const auto [place, is_new] =
        known.try_emplace({display.x, display.y, display.width, display.height}, layout.boxes.size());
    if (is_new) {
      layout.boxes.push_back(
          {{display.x, display.y, display.x + display.width, display.y + display.height}, {}, false});
    }
    LayoutBox& box = layout.boxes[place->second];
    box.displays.push_back(display);
    box.is_main = box.is_main || isMain(display);
  }
  for (const LayoutBox& box : layout.boxes) {
    layout.bounds = &box == layout.boxes.data() ? box.bounds : unionOf(layout.bounds, box.bounds);
  }
  // Of equal ones the first is drawn last, on top: the main one, if it is among them.
  std::reverse(layout.boxes.begin(), layout.boxes.end());
  std::stable_sort(layout.boxes.begin(), layout.boxes.end(),
                   [](const LayoutBox& a, const LayoutBox& b) { return sizeOf(a.bounds) > sizeOf(b.bounds); });
  raiseMain(layout.boxes);
  return layout;
}

Area largestFreePart(const Area& area, std::span<const Area> covers) {
  std::vector<Area> over;
  std::copy_if(covers.begin(), covers.end(), std::back_inserter(over),
               [&](const Area& cover) { return overlap(area, cover); });
  if (over.size() > kMostCovers) {
    return {};
  }
  std::vector<double> columns;
  std::vector<double> rows;
  for (const Area& cover : over) {
    columns.insert(columns.end(), {cover.left, cover.right});
    rows.insert(rows.end(), {cover.top, cover.bottom});
  }
  columns = edgesWithin(area.left, area.right, std::move(columns));
  rows = edgesWithin(area.top, area.bottom, std::move(rows));
  Area best;
  for (std::size_t left = 0; left < columns.size(); ++left) {
    for (std::size_t right = left + 1; right < columns.size(); ++right) {
      for (std::size_t top = 0; top < rows.size(); ++top) {
        for (std::size_t bottom = top + 1; bottom < rows.size(); ++bottom) {
          const Area part{columns[left], rows[top], columns[right], rows[bottom]};
          const bool is_free =
              std::none_of(over.begin(), over.end(), [&](const Area& cover) { return overlap(part, cover); });
          best = is_free && sizeOf(part) > sizeOf(best) ? part : best;
        }
      }
    }
  }
  return best;
}

std::optional<Label> fitLabel(const LayoutBox& box, const LabelSpace& space) {
  for (const double size : space.sizes) {
    for (auto& lines : labels(box, std::string::npos)) {
      if (fits(lines, size, space)) {
        return Label{std::move(lines), size, true};
      }
    }
  }
  for (const double size : space.sizes) {
    const double columns = std::floor(std::max(space.area.width(), 0.0) / space.column_width / size);
    for (auto& lines : labels(box, static_cast<std::size_t>(columns))) {
      if (columns >= kShortestName && fits(lines, size, space)) {
        return Label{std::move(lines), size, false};
      }
    }
  }
  for (const double size : space.number_sizes) {
    for (const std::string& line : shortLabels(box)) {
      if (fits({line}, size, space)) {
        return Label{{line}, size, false};
      }
    }
  }
  return std::nullopt;
}

std::vector<std::string> legendRow(const Display& display) {
  return {std::to_string(display.number), isMain(display) ? "main" : "", printable(display.name),
          sizeText(display) + " " + positionText(display), "scale " + numberText(display.scale)};
}

std::vector<std::vector<std::string>> legendRows(std::vector<Display> displays, const Layout& layout) {
  std::stable_sort(displays.begin(), displays.end(), [](const Display& a, const Display& b) {
    return a.index.value_or(UINT32_MAX) < b.index.value_or(UINT32_MAX);
  });
  std::vector<std::vector<std::string>> rows;
  std::transform(displays.begin(), displays.end(), std::back_inserter(rows), legendRow);
  for (const Display& display : layout.undrawn) {
    rows.push_back(legendRow(display));
    rows.back().emplace_back("not drawn");
  }
  return rows;
}

std::vector<std::string> overlapNotes(const Layout& layout) {
  std::vector<std::string> notes;
  for (std::size_t below = 0; below < layout.boxes.size(); ++below) {
    for (std::size_t above = below + 1; above < layout.boxes.size(); ++above) {
      if (!overlap(layout.boxes[below].bounds, layout.boxes[above].bounds)) {
        continue;
      }
      if (notes.size() == kMostNotes) {
        notes.emplace_back("and more overlaps");
        return notes;
      }
      notes.push_back("overlap: " + shortLabels(layout.boxes[above]).back() + " and " +
                      shortLabels(layout.boxes[below]).back());
    }
  }
  return notes;
}

}  // namespace devhost::tool
