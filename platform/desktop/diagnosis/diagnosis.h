// What the sources of the live desktop answer, each by itself, for whoever wants to know why something is missing. Only
// asks: changes nothing but what every use of the live desktop does (colord is started where the bus can do that, and
// told of the profiles that were assigned before).
//
// Each function may be called from any thread, and answers within its time limit.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desktop/colord/colord_model.h"
#include "desktop/model/desktop.h"
#include "desktop/model/display_layout.h"
#include "desktop/model/export.h"

namespace platform::desktop {

// --- the X server

enum class XServerState {
  kNotNamed,  ///< DISPLAY is not set
  kRefused,   ///< there is none, or it lets nobody in
  kSilent,    ///< it does not answer within the limit
  kNoRandr,   ///< it answers, and has no RandR that serves
  kAnswers,
};

struct XServerReport {
  XServerState state = XServerState::kNotNamed;
  std::string display;            ///< what DISPLAY says
  std::uint32_t randr_minor = 0;  ///< of version 1
  double scale = 1;               ///< pixels per point, as the desktop's settings say
  std::vector<Monitor> monitors;  ///< in the server's order
  Arrangement arrangement;        ///< what is made of them
};

inline constexpr std::chrono::milliseconds kXServerLimit{3000};

PLATFORM_API XServerReport askXServer();

// --- colord

enum class ColordState {
  kNoBus,         ///< the system bus cannot be reached, or does not answer
  kNotInstalled,  ///< nobody on the bus is colord, and the bus cannot start it
  kSilent,        ///< it cannot be started, or does not answer
  kAnswers,
};

struct ColordReport {
  ColordState state = ColordState::kNoBus;
  std::vector<ColordDevice> devices;
  std::vector<std::optional<std::size_t>> matches;  ///< for each display the index of its device
};

inline constexpr std::chrono::milliseconds kColordLimit{5000};

PLATFORM_API ColordReport askColord(const std::vector<Display>& displays);

// --- files

enum class ProfileFault {
  kNone,
  kMissing,      ///< there is no such file
  kUnreadable,   ///< this user may not read it, or it cannot be read
  kNotRegular,   ///< a directory, a device, a pipe, a socket
  kTooLarge,     ///< larger than any profile; it is not read
  kNotAProfile,  ///< its contents are no ICC profile
  kIncomplete,   ///< shorter than its header says
};

/// What is wrong with a profile file. Never waits for a pipe or a device.
PLATFORM_API ProfileFault faultOfProfile(const std::string& path);

struct ProfileFolder {
  std::string path;
  bool readable = true;
  std::size_t profiles = 0;                                  ///< sound ones, in subfolders too
  std::vector<std::pair<std::string, ProfileFault>> faults;  ///< files named like profiles, by path
};

/// The folders in which installed profiles are looked for, as far as they exist. Symbolic links to folders are not
/// followed here.
PLATFORM_API std::vector<ProfileFolder> examineProfileFolders();

}  // namespace platform::desktop
