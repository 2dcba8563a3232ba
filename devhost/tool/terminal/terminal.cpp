#include "devhost/tool/terminal/terminal.h"

#include <langinfo.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

#include <string_view>

namespace devhost::tool {
namespace {

constexpr std::size_t kUsualColumns = 80;

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

}  // namespace devhost::tool
