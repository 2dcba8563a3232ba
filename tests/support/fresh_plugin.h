// Loads the built plugin with fresh state, any number of times in a process.
#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include "devhost/entries/host.h"
#include "support/temporary_folder.h"

namespace support {

/// Loads the library itself the first time, then a copy each time: loading one file twice would share its state.
inline devhost::Plugin loadFreshPlugin(devhost::Host& host) {
  static bool loaded = false;
  if (!std::exchange(loaded, true)) {
    return host.load(OSTREVIN_LIBRARY);
  }
  const TemporaryFolder folder;  // may go: a loaded library stays loaded
  const std::string copy = folder.path(std::filesystem::path(OSTREVIN_LIBRARY).filename().string());
  std::filesystem::copy_file(OSTREVIN_LIBRARY, copy);
  return host.load(copy);
}

}  // namespace support
