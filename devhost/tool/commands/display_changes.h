// Which displays there are, and which come and go, as the plugin's exported functions report it.
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
  /// A display with the number of another one is not that one.
  friend bool operator==(const KnownDisplay& a, const KnownDisplay& b) {
    return a.number == b.number && a.uuid == b.uuid;
  }
};

class DisplayChanges {
 public:
  /// Takes the displays of this moment as known. Throws PluginError when the plugin does not export the functions that
  /// report changes.
  explicit DisplayChanges(const Plugin& plugin);

  /// Looks again. True when displays have come or gone since the last look; added() and removed() are those.
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
