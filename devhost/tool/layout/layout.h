// The arrangement of displays as something to draw: boxes, which of them cover which, and what is written into them.
// Pure functions of their arguments.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "devhost/tool/session/displays.h"

namespace devhost::tool {

/// A rectangle in any unit; y grows downwards.
struct Area {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  double width() const { return right - left; }
  double height() const { return bottom - top; }
};

/// Whether they share more than an edge.
bool overlap(const Area& a, const Area& b);

/// A rectangle of the desktop and the displays that show it: several when they mirror each other exactly.
struct LayoutBox {
  Area bounds;  ///< in points
  std::vector<Display> displays;
  bool is_main = false;
};

struct Layout {
  std::vector<LayoutBox> boxes;  ///< in the order in which to draw them: a box covers those before it
  std::vector<Display> undrawn;  ///< empty, or too far away to be drawn beside others
  Area bounds;                   ///< of all boxes together; empty without boxes
};

/// Takes the main display first. Larger boxes come before smaller ones, so that a part of every box is visible.
Layout arrangeLayout(const std::vector<Display>& displays);

/// The largest rectangle inside `area` that none of `covers` overlaps; empty when there is none, or too many covers to
/// search.
Area largestFreePart(const Area& area, std::span<const Area> covers);

// --- texts, all of them printable

inline constexpr const char* kEllipsis = "…";
/// Names are not cut to fewer columns.
inline constexpr std::size_t kShortestName = 8;

/// The space for a label, and how large its letters may be. Lengths of a letter are multiples of its size.
struct LabelSpace {
  Area area;
  double column_width = 1;
  double line_height = 1;
  std::span<const double> sizes;         ///< of whole labels, largest first
  std::span<const double> number_sizes;  ///< of labels that are a number only
};

struct Label {
  std::vector<std::string> lines;
  double size = 0;           ///< of the letters
  bool is_complete = false;  ///< false: the legend has to repeat it
};

/// The most readable label of the box that fits; nothing when none does.
std::optional<Label> fitLabel(const LayoutBox& box, const LabelSpace& space);

/// One display as a row of a legend: number, "main" or nothing, name, bounds, scale.
std::vector<std::string> legendRow(const Display& display);
/// The rows of `displays` in order, then those of the displays that are not drawn, with "not drawn" as a sixth cell.
std::vector<std::vector<std::string>> legendRows(std::vector<Display> displays, const Layout& layout);
/// Such as "overlap: 1 and 2", for each pair of boxes; a long list is cut.
std::vector<std::string> overlapNotes(const Layout& layout);

// --- pictures

struct TextStyle {
  std::size_t columns = 80;  ///< of the terminal; no line is longer
  bool ascii = false;        ///< ASCII only, for terminals without UTF-8
};

/// Narrower terminals are taken to have this many columns.
inline constexpr std::size_t kFewestColumns = 20;

/// Lines, each with its line end. Proportions are right as far as character cells, twice as high as wide, allow. A
/// display without room for its label has its number there and a line in the legend below.
std::string drawText(const Layout& layout, const TextStyle& style);

/// An SVG document in UTF-8. Every box is a group with a rectangle, to one scale and one origin, and its displays in
/// data attributes; see docs/json.md. The picture has no background: its colours suit a light page and a dark one, and
/// follow the reader's preference where the viewer supports it.
std::string drawSvg(const Layout& layout);

}  // namespace devhost::tool
