// The arrangement of displays as something to draw: boxes, which of them cover which, and what is written into them.
// Pure functions of their arguments.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "devhost/tool/displays.h"

namespace devhost::tool {

/// A rectangle, in whatever unit; y grows downwards.
struct Area {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  double width() const { return right - left; }
  double height() const { return bottom - top; }
};

/// Whether they have more than an edge in common.
bool overlap(const Area& a, const Area& b);

/// A place on the desktop and the displays that show it: more than one where they mirror one another exactly.
struct LayoutBox {
  Area bounds;  ///< in points
  std::vector<Display> displays;
  bool is_main = false;
};

struct Layout {
  std::vector<LayoutBox> boxes;  ///< in the order in which to draw them: a box covers those before it
  std::vector<Display> undrawn;  ///< without an area, or beyond what can be drawn beside others
  Area bounds;                   ///< of all boxes together; empty without a box
};

/// `displays` with the main one first. Larger boxes come before smaller ones, so that every box has a part that shows.
Layout arrangeLayout(const std::vector<Display>& displays);

/// The largest rectangle inside `area` that none of `covers` overlaps; one without an area when there is none, or when
/// the covers are too many to find it.
Area largestFreePart(const Area& area, std::span<const Area> covers);

// --- texts, all of them printable

/// Lines of a label, from the most readable form to the one that needs least room. `longest_name` is the columns that a
/// line with a name may take.
std::vector<std::vector<std::string>> labels(const LayoutBox& box, std::size_t longest_name);
/// The numbers alone, from the most readable form to the shortest.
std::vector<std::string> shortLabels(const LayoutBox& box);

/// One display as a row of a legend: number, "main" or nothing, name, bounds, scale.
std::vector<std::string> legendRow(const Display& display);
/// Such as "overlap: 1 and 2", one for each pair of boxes, as far as they are few.
std::vector<std::string> overlapNotes(const Layout& layout);

}  // namespace devhost::tool
