// Hosts that lack an entry, or whose entry answers what it should not.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "devhost/entries/host.h"

namespace faults {

struct HostAnswer {
  std::string entry;
  std::string name;  ///< such as "missing" or "null"
  /// Changes the host's table. Before the plugin is loaded: it looks an entry up once.
  std::function<void(devhost::Host&)> apply;
};

/// For the names of tests.
inline std::ostream& operator<<(std::ostream& out, const HostAnswer& answer) {
  return out << answer.entry << ": " << answer.name;
}

/// For every entry that the plugin looks up.
const std::vector<HostAnswer>& hostAnswers();

}  // namespace faults
