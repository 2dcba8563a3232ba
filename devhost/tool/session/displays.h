// The active displays as the plugin's methods describe them. Only their numbers and UUIDs come from the frameworks,
// since no method returns them.
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
  std::optional<std::uint32_t> index;  ///< nothing when the display was removed meanwhile
  std::string name;
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  double scale = 0;
  std::string profile;  ///< empty when there is none
};

/// Numbers of the active displays, the main one first, from CoreGraphics, as a host program gets them.
std::vector<std::uint32_t> activeDisplayNumbers();
/// The 16 bytes of the display's UUID from ColorSync; empty when it has none.
std::string uuidOf(std::uint32_t number);
/// From "GetName".
std::string nameOf(const Plugin& plugin, std::uint32_t number);
/// From "GetProfilePath", which waits for 2 seconds when no profile matches; empty at once for a display without
/// associated profiles.
std::string profileOf(const Plugin& plugin, std::uint32_t number);
bool isMain(const Display& display);
/// All active displays without their profiles, which take longest. Throws ValueError when the plugin lacks a method.
std::vector<Display> describePlaces(const Plugin& plugin);
/// The same with the profiles.
std::vector<Display> describeDisplays(const Plugin& plugin);
/// All but the profile.
Json placeToJson(const Display& display);

}  // namespace devhost::tool
