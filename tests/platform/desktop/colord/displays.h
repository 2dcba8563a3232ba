// Displays, EDIDs and walks for the tests of colord's devices.
#pragma once

#include <glib.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/colord/colord_devices.h"
#include "support/edid_maker.h"

namespace colord_test {

using platform::desktop::Arrangement;
using platform::desktop::ColordDevices;
using platform::desktop::DeviceProfile;
using platform::desktop::Display;
using platform::desktop::Uuid;

/// Profiles that colord finds by itself.
inline constexpr const char* kAdobe = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
inline constexpr const char* kApple = "/usr/share/color/icc/colord/AppleRGB.icc";

/// The UUID is derived from the number.
inline Display makeDisplay(std::uint32_t number, const std::string& connector, std::vector<std::uint8_t> edid) {
  Display display;
  display.number = number;
  display.uuid = Uuid{static_cast<std::uint8_t>(number), 0x42};
  display.connector = connector;
  display.edid = std::move(edid);
  return display;
}

inline std::vector<std::uint8_t> firstEdid() {
  return support::makeEdid({.vendor = "DEL", .serial = 1502, .name = "DELL U2412M"});
}
inline std::vector<std::uint8_t> secondEdid() {
  return support::makeEdid({.vendor = "HWP", .serial = 27001, .name = "HP Z27x"});
}

inline std::string md5(const std::vector<std::uint8_t>& bytes) {
  char* const digits = g_compute_checksum_for_data(G_CHECKSUM_MD5, bytes.data(), bytes.size());
  std::string text = digits;
  g_free(digits);
  return text;
}

inline ColordDevices devicesFor(std::vector<Display> displays) {
  auto arrangement = std::make_shared<Arrangement>();
  arrangement->displays = std::move(displays);
  return ColordDevices([arrangement] { return arrangement; });
}

inline std::vector<DeviceProfile> walk(const ColordDevices& devices) {
  std::vector<DeviceProfile> entries;
  devices.visit([&](const DeviceProfile& entry) {
    entries.push_back(entry);
    return true;
  });
  return entries;
}

/// The file of the display's default and current profile; nullopt without one.
inline std::optional<std::string> currentFile(const ColordDevices& devices, const Display& display) {
  for (const DeviceProfile& entry : walk(devices)) {
    if (entry.device_id == display.uuid && entry.is_default == true && entry.is_current == true) {
      return entry.profile_path;
    }
  }
  return std::nullopt;
}

}  // namespace colord_test
