// A table of texts for a terminal.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace devhost::tool {

/// Columns as wide as their widest cell, two blanks between them, cells made printable, the last column not padded.
class Table {
 public:
  explicit Table(std::vector<std::string> headings);
  /// As many cells as there are headings.
  void addRow(std::vector<std::string> cells);
  friend std::ostream& operator<<(std::ostream& out, const Table& table);

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace devhost::tool
