// The active displays as the plugin's methods describe them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "devhost/calling/plugin.h"
#include "devhost/tool/terminal/json.h"

namespace devhost::tool {

struct Display {
  std::uint32_t number = 0;
  std::optional<std::uint32_t> index;  ///< nothing when the display went away meanwhile
  std::string name;
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  double scale = 0;
  std::string profile;  ///< empty when there is none
};

/// Numbers of the active displays, the main one first, as a host's program gets them.
std::vector<std::uint32_t> activeDisplayNumbers();
/// Whether it is the first one.
bool isMain(const Display& display);
/// All active displays without their profiles, which cost more than the rest. Throws ValueError when the plugin lacks a
/// method.
std::vector<Display> describePlaces(const Plugin& plugin);
/// The same with the profiles.
std::vector<Display> describeDisplays(const Plugin& plugin);
/// All but the profile.
Json placeToJson(const Display& display);

}  // namespace devhost::tool
