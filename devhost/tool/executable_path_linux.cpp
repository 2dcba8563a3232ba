#include <climits>
#include <cstdlib>

#include "devhost/tool/executable_path.h"

namespace devhost::tool {

std::string executablePath() {
  char path[PATH_MAX];
  return realpath("/proc/self/exe", path) == nullptr ? std::string() : std::string(path);
}

}  // namespace devhost::tool
