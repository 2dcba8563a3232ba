// The active displays, and their changes as the plugin's exported functions report them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devhost/calling/plugin.h"

namespace devhost::tool {

struct KnownDisplay {
  std::uint32_t number = 0;
  std::string uuid;  ///< its 16 bytes; empty when it has none
  std::string name;
  /// A monitor that takes over another one's number is another display.
  friend bool operator==(const KnownDisplay& a, const KnownDisplay& b) {
    return a.number == b.number && a.uuid == b.uuid;
  }
};

class DisplayChanges {
 public:
  /// Starts with the present displays. Throws PluginError when the plugin does not export the functions that report
  /// changes.
  explicit DisplayChanges(const Plugin& plugin);

  /// True when displays were added or removed since the last look; added() and removed() list them.
  bool look();

  const std::vector<KnownDisplay>& displays() const { return displays_; }
  const std::vector<KnownDisplay>& added() const { return added_; }
  const std::vector<KnownDisplay>& removed() const { return removed_; }

 private:
  std::vector<KnownDisplay> list() const;

  const Plugin& plugin_;
  bool (*changed_)();
  std::vector<KnownDisplay> displays_;
  std::vector<KnownDisplay> added_;
  std::vector<KnownDisplay> removed_;
};

}  // namespace devhost::tool
