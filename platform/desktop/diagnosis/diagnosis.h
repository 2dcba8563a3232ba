// The state of each source of the live desktop, for reports about what is missing. Changes nothing but what every use
// of the live desktop changes: the bus starts colord if it can, and colord gets the profiles that were assigned before.
//
// Any thread may call; each function returns within its time limit.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/colord/colord_model.h"
#include "desktop/model/desktop.h"
#include "desktop/model/display_layout.h"
#include "desktop/model/edid.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// What a display server shows.
struct ShownDisplays {
  std::vector<Monitor> monitors;           ///< in the server's order
  Arrangement arrangement;                 ///< of the monitors
  std::vector<std::optional<Edid>> edids;  ///< of each display; nothing for an invalid one

  ShownDisplays() = default;
  ShownDisplays(std::vector<Monitor> shown, double scale)
      : monitors(std::move(shown)), arrangement(arrange(monitors, scale)) {
    for (const Display& each : arrangement.displays) {
      edids.push_back(decodeEdid(each.edid));
    }
  }
};

// --- the Wayland compositor

enum class WaylandState {
  kNotNamed,   ///< WAYLAND_DISPLAY is not set, or XDG_RUNTIME_DIR for a relative name
  kNoLibrary,  ///< libwayland-client is missing
  kRefused,    ///< no compositor there, or no access to it
  kSilent,     ///< no reply within the limit
  kOld,        ///< it gives no names of outputs, or no areas in points
  kReady,
};

struct WaylandReport {
  WaylandState state = WaylandState::kNotNamed;
  std::string socket;                ///< its path
  std::uint32_t output_version = 0;  ///< of wl_output
  std::uint32_t area_version = 0;    ///< of zxdg_output_manager_v1; 0 without it
  ShownDisplays shown;               ///< with kOld and kReady
};

inline constexpr std::chrono::milliseconds kWaylandLimit{3000};

/// Called by way of desktop/parts.h.
WaylandReport askWayland();

// --- the X server

enum class XServerState {
  kNotNamed,  ///< DISPLAY is not set
  kRefused,   ///< no server there, or no access to it
  kSilent,    ///< no reply within the limit
  kNoRandr,   ///< no RandR 1.2
  kReady,
};

struct XServerReport {
  XServerState state = XServerState::kNotNamed;
  std::string display;            ///< the value of DISPLAY
  std::uint32_t randr_minor = 0;  ///< of version 1
  double scale = 1;               ///< pixels per point
  bool is_xwayland = false;
  ShownDisplays shown;
};

inline constexpr std::chrono::milliseconds kXServerLimit{3000};

/// Called by way of desktop/parts.h.
XServerReport askXServer();

// --- colord

enum class ColordState {
  kNoBus,         ///< no connection to the system bus, or no reply from it
  kNotInstalled,  ///< colord is not on the bus, and the bus cannot start it
  kSilent,        ///< it does not start, or does not reply
  kReady,
};

struct ColordReport {
  ColordState state = ColordState::kNoBus;
  std::vector<ColordDevice> devices;
  std::vector<std::optional<std::size_t>> matches;  ///< the index of each display's device
};

inline constexpr std::chrono::milliseconds kColordLimit{5000};

/// Called by way of desktop/parts.h.
ColordReport askColord(const std::vector<Display>& displays);

// --- files

enum class ProfileFault {
  kNone,
  kMissing,      ///< no such file
  kUnreadable,   ///< no permission, or a read error
  kNotRegular,   ///< a directory, a device, a pipe, a socket
  kTooLarge,     ///< larger than any profile; not read
  kNotAProfile,  ///< not an ICC profile
  kIncomplete,   ///< shorter than its header states
};

/// Never waits for a pipe or a device.
PLATFORM_API ProfileFault faultOfProfile(const std::string& path);

struct ProfileFolder {
  std::string path;
  bool readable = true;
  std::size_t profiles = 0;                                  ///< sound ones, in subfolders too
  std::vector<std::pair<std::string, ProfileFault>> faults;  ///< files named like profiles, by path
};

/// The folders of installed profiles that exist. The walk is that of the listing (icc_walk.h): the sound files, and
/// those with the fault kIncomplete, are the installed profiles.
PLATFORM_API std::vector<ProfileFolder> examineProfileFolders();

}  // namespace platform::desktop
