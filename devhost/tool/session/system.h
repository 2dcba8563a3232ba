// What each system does in its own way: choosing the desktop behind the frameworks, and finding the running program.
#pragma once

#include <stdexcept>
#include <string>

namespace devhost::tool {

/// The option's word for the computer's own desktop.
inline constexpr const char* kLiveDesktop = "live";

/// A desktop that cannot be used. What() is one line.
class DesktopError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a command shows of the desktop.
enum class Shown {
  kNothing,
  kDisplays,
  kProfiles,  // of the displays, and the displays themselves
};

/// Chooses the desktop that the frameworks show in this process; to be called before the first call of a framework.
/// `option` is kLiveDesktop, on Linux also "wayland" or "x11", the path of a desktop file, or empty: then the
/// environment variable OSTREVIN_DESKTOP has one of these, and without it the live desktop is chosen. If in that last
/// case `shown` is not kNothing and there is neither a Wayland compositor nor an X server, the file at `example_path`
/// is chosen instead, unless that path is empty. Returns a line for the user, or an empty text. Throws DesktopError for
/// a file that cannot be used.
std::string chooseDesktop(const std::string& option, Shown shown, const std::string& example_path);

/// Absolute path of the running program, symbolic links resolved; empty when the system does not report it.
std::string executablePath();

}  // namespace devhost::tool
