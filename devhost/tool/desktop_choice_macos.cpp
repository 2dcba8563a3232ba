// The frameworks are the system's own: there is one desktop, the live one.
#include "devhost/tool/desktop_choice.h"

namespace devhost::tool {

std::string chooseDesktop(const std::string& option, bool /*needs_displays*/, const std::string& /*example_path*/) {
  if (!option.empty() && option != kLiveDesktop) {
    throw DesktopError(option + ": this system's frameworks show the live desktop only");
  }
  return {};
}

}  // namespace devhost::tool
