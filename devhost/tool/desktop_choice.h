// Which desktop the frameworks answer from in this process. To be settled before anything asks them.
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

/// Settles the desktop: `option` is kLiveDesktop, the path of a desktop file, or empty to go by the environment
/// variable OSTREVIN_DESKTOP and, where that says nothing, to take the live desktop. If then `needs_displays` and there
/// is no X server, the file at `example_path` is taken instead, unless that path is empty. Answers a line to tell the
/// user, or nothing. Throws DesktopError for a file that cannot be used.
std::string chooseDesktop(const std::string& option, bool needs_displays, const std::string& example_path);

}  // namespace devhost::tool
