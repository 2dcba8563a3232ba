// colord's display devices, as plain data.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform::desktop {

struct ColordProfile {
  std::string object_path;
  std::string filename;  ///< empty when the profile has no file
};

/// A display device. A string is empty when colord has no value.
struct ColordDevice {
  std::string object_path;
  std::string id;
  std::string vendor;
  std::string model;
  std::string serial;
  std::string connector;                ///< metadata XRANDR_name
  std::string edid_md5;                 ///< metadata OutputEdidMd5: of the monitor's whole EDID, in hexadecimal digits
  bool physical = false;                ///< registered for a connected monitor; false: read from colord's database
  std::uint64_t modified = 0;           ///< when colord last changed it, in microseconds
  std::vector<ColordProfile> profiles;  ///< the default one first
};

/// What a device is registered with.
struct ColordRegistration {
  std::string id;
  std::vector<std::pair<std::string, std::string>> properties;  ///< properties and metadata by colord's names
};

}  // namespace platform::desktop
