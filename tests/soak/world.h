// What is true, as the soak itself commanded it or as xrandr and colormgr report it: never as the plugin's code does.
// One thread changes the world, another one asks.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "soak/plan.h"
#include "soak/profiles.h"
#include "soak/timeline.h"

namespace soak {

/// An active display: its number, and its bounds from the upper left corner of the main one.
struct Shown {
  std::uint32_t number = 0;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// In the system's order, the main one first.
using Arrangement = std::vector<Shown>;

const Shown* find(const Arrangement& arrangement, std::uint32_t number);

/// Which files were assigned to an output, as far as the answers of SetProfile tell.
struct Assigned {
  std::set<std::size_t> current;   ///< choices, one of which is in use
  std::set<std::size_t> attached;  ///< choices that its device has
  std::set<std::size_t> maybe;     ///< choices that its device may have besides, because an assignment was interrupted
};

class World {
 public:
  World(Plan plan, Arrangement first);

  const Plan plan;
  const Profiles profiles;
  Timeline<Arrangement> arrangement;
  Timeline<bool> extra_profile;
  Timeline<bool> colord_runs;  ///< and has every profile back that was assigned

  /// The name that the output's EDID has.
  static std::string outputName(std::size_t output);

  /// The newest that is known about assignments, without waiting for what is between.
  void noteAssignment(const Call& call);
  std::set<std::size_t> newestChoices(std::size_t output) const;

 private:
  mutable std::mutex mutex_;
  std::array<std::set<std::size_t>, kOutputs> newest_;
};

}  // namespace soak
