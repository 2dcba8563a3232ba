// A grid of character cells with texts, and with lines that join where they meet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace devhost::tool {

/// A rectangle of cells, its last column and row included.
struct CellArea {
  std::size_t left = 0;
  std::size_t top = 0;
  std::size_t right = 0;
  std::size_t bottom = 0;
};

class CharacterGrid {
 public:
  CharacterGrid(std::size_t columns, std::size_t rows) : columns_(columns), rows_(rows), lines_(columns * rows) {}

  /// Draws the outline and clears its inside. Lines that meet the outline join it. At least two columns and rows.
  void addBox(const CellArea& area);
  /// Overwrites cells with a text without control characters, `width` columns wide, which must fit into the row.
  void addText(std::size_t column, std::size_t row, std::string text, std::size_t width);

  /// The rows without the blanks at their ends, each with a line end.
  std::string draw(bool ascii) const;

 private:
  struct Text {
    std::string bytes;
    std::size_t width;
  };

  std::uint8_t& at(std::size_t column, std::size_t row) { return lines_[row * columns_ + column]; }

  std::size_t columns_;
  std::size_t rows_;
  std::vector<std::uint8_t> lines_;                            ///< the directions of each cell's lines
  std::map<std::pair<std::size_t, std::size_t>, Text> texts_;  ///< by row and column
};

}  // namespace devhost::tool
