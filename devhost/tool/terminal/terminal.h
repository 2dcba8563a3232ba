// Texts on the terminal.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace devhost::tool {

/// Width of the terminal behind the standard output; 80 where there is none, or it does not report one.
std::size_t terminalColumns();
/// Whether the user's locale, set by LC_ALL, LC_CTYPE and LANG, is UTF-8. Does not change the process's locale.
bool localeIsUtf8();

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

/// Clears the line that the terminal's cursor is in.
inline constexpr char kClearLine[] = "\r\x1b[K";

/// Shorter lists show no progress.
inline constexpr std::size_t kLongList = 1000;

/// Counts the items of a long list on the terminal behind the standard error output, if there is one.
class Progress {
 public:
  /// `what` is counted, such as "profiles".
  explicit Progress(std::string what);
  /// Clears the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// One more.
  void step();

 private:
  std::string what_;
  std::size_t count_ = 0;
  bool on_terminal_;
  bool shown_ = false;
};

}  // namespace devhost::tool
