#include "devhost/tool/terminal/table.h"

#include <algorithm>
#include <ostream>

#include "devhost/language/printable.h"

namespace devhost::tool {
namespace {

constexpr std::size_t kGap = 2;

}  // namespace

Table::Table(std::vector<std::string> headings) { addRow(std::move(headings)); }

void Table::addRow(std::vector<std::string> cells) {
  for (std::string& cell : cells) {
    cell = printable(cell);
  }
  rows_.push_back(std::move(cells));
}

std::ostream& operator<<(std::ostream& out, const Table& table) {
  const std::size_t columns = table.rows_.front().size();
  std::vector<std::size_t> widths(columns);
  for (const auto& row : table.rows_) {
    for (std::size_t i = 0; i < columns; ++i) {
      widths[i] = std::max(widths[i], columnsOf(row[i]));
    }
  }
  for (const auto& row : table.rows_) {
    for (std::size_t i = 0; i + 1 < columns; ++i) {
      out << row[i] << std::string(widths[i] - columnsOf(row[i]) + kGap, ' ');
    }
    out << row.back() << '\n';
  }
  return out;
}

}  // namespace devhost::tool
