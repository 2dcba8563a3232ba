// The built plugin as if it were loaded for the first time, however often a process asks for it.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include "devhost/entries/host.h"

namespace support {

/// Loads the library itself the first time, and a copy under a name of its own each time after that: a copy has its own
/// state, where loading one file twice would not.
inline devhost::Plugin loadFreshPlugin(devhost::Host& host) {
  static bool loaded = false;
  if (!std::exchange(loaded, true)) {
    return host.load(OSTREVIN_LIBRARY);
  }
  std::string folder = (std::filesystem::temp_directory_path() / "ostrevin-copy-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    throw std::runtime_error("no temporary folder");
  }
  const std::filesystem::path copy = std::filesystem::path(folder) / std::filesystem::path(OSTREVIN_LIBRARY).filename();
  std::filesystem::copy_file(OSTREVIN_LIBRARY, copy);
  auto plugin = host.load(copy.string());
  std::filesystem::remove_all(folder);  // what is loaded stays loaded
  return plugin;
}

}  // namespace support
