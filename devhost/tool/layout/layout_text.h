// The arrangement of displays, drawn with characters.
#pragma once

#include <cstddef>
#include <string>

#include "devhost/tool/layout/layout.h"

namespace devhost::tool {

struct TextStyle {
  std::size_t columns = 80;  ///< of the terminal; no line is longer
  bool ascii = false;        ///< nothing but ASCII: for terminals that show no UTF-8
};

/// Narrower terminals are taken to have this many columns.
inline constexpr std::size_t kFewestColumns = 20;

/// Lines, each with its line end. Proportions are right as far as character cells, twice as high as wide, allow. A
/// display with too little room for its label has its number and a line in the legend below.
std::string drawText(const Layout& layout, const TextStyle& style);

}  // namespace devhost::tool
