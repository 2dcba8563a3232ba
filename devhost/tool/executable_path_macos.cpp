#include <mach-o/dyld.h>

#include <climits>
#include <cstdint>
#include <cstdlib>

#include "devhost/tool/executable_path.h"

namespace devhost::tool {

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
