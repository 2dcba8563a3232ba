// The live desktop is that of the Wayland compositor or the X server; a desktop that a file describes may replace it.
#include <climits>
#include <cstdlib>
#include <memory>

#include "desktop/current.h"
#include "desktop/diagnosis/diagnosis.h"
#include "desktop/parts.h"
#include "desktop/script/scripted.h"
#include "devhost/tool/session/system.h"
#include "devhost/tool/terminal/waiting.h"

namespace devhost::tool {
namespace {

using platform::desktop::WaylandState;
using platform::desktop::XServerState;

constexpr const char* kDesktopVariable = "OSTREVIN_DESKTOP";

std::string environmentText(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// Usually needs no connection beside the live desktop's.
bool isDisplayServerThere() {
  const std::string display = environmentText("DISPLAY");
  const bool names_compositor = !environmentText("WAYLAND_DISPLAY").empty();
  if (!names_compositor && display.empty()) {
    return false;
  }
  const Waiting waiting(names_compositor ? "the compositor" : "the X server " + display);
  if (!platform::desktop::current()->arrangement()->displays.empty()) {
    return true;
  }
  const auto wayland = names_compositor ? platform::desktop::waylandPart().ask().state : WaylandState::kNotNamed;
  if (wayland == WaylandState::kSilent || wayland == WaylandState::kOld || wayland == WaylandState::kReady) {
    return true;
  }
  const XServerState x = platform::desktop::x11Part().ask().state;
  return x != XServerState::kNotNamed && x != XServerState::kRefused;
}

/// Before the first question to the display server: the connection to the system bus is made while it replies.
void prepareLiveDesktop(Shown shown) {
  const bool names_server = !environmentText("WAYLAND_DISPLAY").empty() || !environmentText("DISPLAY").empty();
  if (shown == Shown::kProfiles && names_server) {
    platform::desktop::colordPart().prepare();
  }
}

/// Sets the variable too, for child processes and for the doctor.
void useFile(const std::string& path) {
  try {
    platform::desktop::setCurrent(
        std::make_shared<platform::desktop::ScriptedDesktop>(platform::desktop::readScript(path)));
  } catch (const std::runtime_error& error) {
    throw DesktopError(error.what());
  }
  setenv(kDesktopVariable, path.c_str(), 1);
}

}  // namespace

std::string chooseDesktop(const std::string& option, Shown shown, const std::string& example_path) {
  const std::string desktop = option.empty() ? environmentText(kDesktopVariable) : option;
  if (platform::desktop::liveSourceNamed(desktop)) {
    setenv(kDesktopVariable, desktop.c_str(), 1);
    prepareLiveDesktop(shown);
    return {};
  }
  if (!desktop.empty()) {
    useFile(desktop);
    return {};
  }
  prepareLiveDesktop(shown);
  if (shown == Shown::kNothing || example_path.empty() || isDisplayServerThere()) {
    return {};
  }
  useFile(example_path);
  return "no display server: showing the example desktop " + example_path;
}

std::string executablePath() {
  char path[PATH_MAX];
  return realpath("/proc/self/exe", path) == nullptr ? std::string() : std::string(path);
}

}  // namespace devhost::tool
