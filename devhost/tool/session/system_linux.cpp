// The live desktop is that of the X server; a desktop that a file describes may replace it.
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

using platform::desktop::XServerState;

constexpr const char* kDesktopVariable = "OSTREVIN_DESKTOP";

std::string environmentText(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// Usually needs no connection beside the live desktop's.
bool isXServerThere() {
  const std::string server = environmentText("DISPLAY");
  if (server.empty()) {
    return false;
  }
  const Waiting waiting("the X server " + server);
  if (!platform::desktop::current()->arrangement()->displays.empty()) {
    return true;
  }
  const XServerState state = platform::desktop::x11Part().ask().state;
  return state != XServerState::kNotNamed && state != XServerState::kRefused;
}

/// Before the first question to the X server: the connection to the system bus is made while it replies.
void prepareLiveDesktop(Shown shown) {
  if (shown == Shown::kProfiles && !environmentText("DISPLAY").empty()) {
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
  if (option == kLiveDesktop) {
    unsetenv(kDesktopVariable);
    prepareLiveDesktop(shown);
    return {};
  }
  const std::string path = option.empty() ? environmentText(kDesktopVariable) : option;
  if (!path.empty()) {
    useFile(path);
    return {};
  }
  prepareLiveDesktop(shown);
  if (shown == Shown::kNothing || example_path.empty() || isXServerThere()) {
    return {};
  }
  useFile(example_path);
  return "no X server: showing the example desktop " + example_path;
}

std::string executablePath() {
  char path[PATH_MAX];
  return realpath("/proc/self/exe", path) == nullptr ? std::string() : std::string(path);
}

}  // namespace devhost::tool
