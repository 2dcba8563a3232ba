// The frameworks are the system's own: there is one desktop, the live one.
#include <mach-o/dyld.h>

#include <climits>
#include <cstdint>
#include <cstdlib>

#include "devhost/tool/session/system.h"

namespace devhost::tool {

std::string chooseDesktop(const std::string& option, Shown /*shown*/, const std::string& /*example_path*/) {
  if (!option.empty() && option != kLiveDesktop) {
    throw DesktopError(option + ": this system's frameworks show the live desktop only");
  }
  return {};
}

std::string executablePath() {
  char reported[PATH_MAX];
  std::uint32_t size = sizeof reported;
  char path[PATH_MAX];
  if (_NSGetExecutablePath(reported, &size) != 0 || realpath(reported, path) == nullptr) {
    return {};
  }
  return path;
}

}  // namespace devhost::tool
