#include "devhost/tool/terminal/terminal.h"

#include <langinfo.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <string_view>

#include "devhost/language/printable.h"

namespace devhost::tool {
namespace {

constexpr std::size_t kUsualColumns = 80;
constexpr std::size_t kGap = 2;
constexpr std::size_t kStepsShown = 100;

}  // namespace

std::size_t terminalColumns() {
  struct winsize size {};
  const bool is_known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return is_known ? size.ws_col : kUsualColumns;
}

bool localeIsUtf8() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(nullptr));
  if (locale == static_cast<locale_t>(nullptr)) {
    return false;
  }
  const bool is_utf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
  freelocale(locale);
  return is_utf8;
}

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

Progress::Progress(std::string what) : what_(std::move(what)), on_terminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shown_) {
    std::fputs(kClearLine, stderr);
  }
}

void Progress::step() {
  ++count_;
  if (!on_terminal_ || count_ <= kLongList || count_ % kStepsShown != 0) {
    return;
  }
  std::fprintf(stderr, "\r%zu %s", count_, what_.c_str());
  shown_ = true;
}

}  // namespace devhost::tool
