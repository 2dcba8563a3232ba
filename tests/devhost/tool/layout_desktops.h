// Desktops for tests of pictures. Screens are given where scales differ, in the places in which the plugin finds them.
#pragma once

namespace tool_test {

inline constexpr const char* kOneDisplay =
    R"({"displays": [{"number": 63, "bounds": [0, 0, 1440, 900], "name": "Built-in", "scale": 2}]})";

/// The main one in the middle, one left of it and higher, one right of it; three scales.
inline constexpr const char* kThreeDisplays = R"({
  "displays": [
    {"number": 1, "bounds": [0, 0, 1440, 900], "name": "Built-in", "model": 1},
    {"number": 2, "bounds": [-2560, -540, 2560, 1440], "name": "Wide", "model": 2},
    {"number": 3, "bounds": [1440, -300, 1080, 1920], "name": "Portrait", "model": 3}],
  "screens": [
    {"frame": [0, 0, 1440, 900], "scale": 2},
    {"frame": [-2560, -540, 2560, 1440], "scale": 1},
    {"frame": [1440, -300, 1080, 1920], "scale": 1.5}]})";

/// One shows what another one shows, a third one reaches half over them, a fourth one lies within.
inline constexpr const char* kOverlappingDisplays = R"({
  "displays": [
    {"number": 1, "bounds": [0, 0, 1920, 1080], "name": "Internal", "model": 1},
    {"number": 2, "bounds": [0, 0, 1920, 1080], "name": "Projector", "model": 2},
    {"number": 3, "bounds": [1200, 600, 1280, 1024], "name": "Half over", "model": 3},
    {"number": 4, "bounds": [0, 0, 800, 600], "name": "Within", "model": 4}]})";

}  // namespace tool_test
