// The tables, for a terminal and as Markdown: the same columns, cut differently.
#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

#include "report.h"

namespace bench {
namespace {

using Cells = std::vector<std::string>;

struct Table {
  std::string title;
  Cells head;
  std::vector<Cells> rows;
};

/// How many columns a UTF-8 text takes.
std::size_t widthOf(const std::string& text) {
  std::size_t width = 0;
  for (const char byte : text) {
    width += (static_cast<unsigned char>(byte) & 0xC0) == 0x80 ? 0 : 1;
  }
  return width;
}

std::string countText(double count) { return std::to_string(std::lround(count)); }

/// Names are to the left, numbers to the right.
constexpr std::size_t kNames = 2;

std::vector<Table> timeTables(const Results& results) {
  std::vector<Table> tables;
  for (const Row& row : results.rows) {
    if (tables.empty() || tables.back().title != row.group) {
      tables.push_back({row.group, {"Method", "Twin", "N", "Plugin", "Twin's", "Ratio", "Bar", ""}, {}});
    }
    tables.back().rows.push_back({row.method, row.twin, std::to_string(row.n), timeText(row.plugin),
                                  timeText(row.direct), ratioText(row.ratio), barText(row.bar),
                                  row.isOver() ? "over" : ""});
  }
  return tables;
}

Table instructionTable(const Results& results) {
  Table table{
      "Instructions for a call, by callgrind", {"Method", "Twin", "N", "Plugin", "Twin's", "More", "At most", ""}, {}};
  for (const Instructions& row : results.instructions) {
    table.rows.push_back({row.method, row.twin, std::to_string(row.n), countText(row.plugin), countText(row.direct),
                          countText(row.plugin - row.direct), row.most_more > 0 ? countText(row.most_more) : "-",
                          row.isOver() ? "over" : ""});
  }
  return table;
}

Table startTable(const Results& results) {
  Table table{"The start of a process, part by part", {"Part", "", "Time"}, {}};
  double sum = 0;
  for (const Phase& phase : results.start) {
    table.rows.push_back({phase.name, "", timeText(phase.milliseconds * 1e6)});
    sum += phase.milliseconds;
  }
  table.rows.push_back({"together", "", timeText(sum * 1e6)});
  return table;
}

std::vector<Table> allTables(const Results& results) {
  std::vector<Table> tables = timeTables(results);
  if (!results.instructions.empty()) {
    tables.push_back(instructionTable(results));
  }
  if (!results.start.empty()) {
    tables.push_back(startTable(results));
  }
  return tables;
}

/// Tables with as many columns are as wide.
std::map<std::size_t, std::vector<std::size_t>> columnWidths(const std::vector<Table>& tables) {
  std::map<std::size_t, std::vector<std::size_t>> widths;
  for (const Table& table : tables) {
    std::vector<std::size_t>& columns = widths[table.head.size()];
    columns.resize(table.head.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      columns[i] = std::max(columns[i], widthOf(table.head[i]));
      for (const Cells& row : table.rows) {
        columns[i] = std::max(columns[i], widthOf(row[i]));
      }
    }
  }
  return widths;
}

void printLine(std::ostream& out, const Cells& cells, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string space(widths[i] - widthOf(cells[i]), ' ');
    line += i < kNames ? cells[i] + space : space + cells[i];
    line += widths[i] == 0 ? "" : "  ";
  }
  out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
}

std::string markdownLine(const Cells& cells, const std::vector<bool>& used) {
  std::string line = "|";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    line += used[i] ? " " + cells[i] + " |" : "";
  }
  return line + "\n";
}

std::vector<bool> usedColumns(const Table& table) {
  std::vector<bool> used(table.head.size());
  for (std::size_t i = 0; i < used.size(); ++i) {
    used[i] = i + 1 == table.head.size() || !table.head[i].empty();
  }
  return used;
}

}  // namespace

void printTable(std::ostream& out, const Results& results) {
  const std::vector<Table> tables = allTables(results);
  const auto widths = columnWidths(tables);
  for (const std::string& line : results.machine) {
    out << line << '\n';
  }
  Cells head;
  for (const Table& table : tables) {
    const std::vector<std::size_t>& columns = widths.at(table.head.size());
    if (table.head != head) {
      out << '\n';
      printLine(out, table.head, columns);
      head = table.head;
    }
    out << "\n" << table.title << '\n';
    for (const Cells& row : table.rows) {
      printLine(out, row, columns);
    }
  }
  out << '\n';
  for (const std::string& note : results.notes) {
    out << note << '\n';
  }
  out << "Over their bars: " << shortfalls(results) << ".\n";
}

std::string markdown(const Results& results) {
  std::ostringstream out;
  for (const std::string& line : results.machine) {
    out << "- " << line << '\n';
  }
  for (const Table& table : allTables(results)) {
    const std::vector<bool> used = usedColumns(table);
    Cells rule;
    for (std::size_t i = 0; i < table.head.size(); ++i) {
      rule.emplace_back(i < kNames ? "---" : "--:");
    }
    out << "\n### " << table.title << "\n\n" << markdownLine(table.head, used) << markdownLine(rule, used);
    for (const Cells& row : table.rows) {
      out << markdownLine(row, used);
    }
  }
  out << '\n';
  for (const std::string& note : results.notes) {
    out << note << '\n';
  }
  out << "Rows over their bars: " << shortfalls(results) << ".\n";
  return out.str();
}

}  // namespace bench
