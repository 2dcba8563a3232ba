// The sources are the Wayland compositor or the X server with the monitors' EDIDs, colord, and the ICC files; or a
// desktop file.
#include <algorithm>
#include <cstdlib>

#include "desktop/current.h"
#include "desktop/diagnosis/diagnosis.h"
#include "desktop/parts.h"
#include "devhost/language/value.h"
#include "devhost/tool/doctor/doctor.h"
#include "devhost/tool/session/displays.h"
#include "devhost/tool/terminal/waiting.h"

namespace devhost::tool {
namespace {

namespace desktop = platform::desktop;
using desktop::ColordState;
using desktop::LiveSource;
using desktop::ProfileFault;
using desktop::WaylandState;
using desktop::XServerState;

constexpr const char* kWayland = "Wayland";
constexpr const char* kXServer = "X server";
constexpr const char* kColord = "colord";
constexpr const char* kFiles = "ICC files";
constexpr const char* kProfile = "profile";
constexpr const char* kEdid = "EDID";
constexpr const char* kEdidFile = "check the cable and the adapter, or start Linux with drm.edid_firmware=";
/// Further faults are only counted.
constexpr std::size_t kMostFaults = 20;

std::string environmentText(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string counted(std::size_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string wordsFor(ProfileFault fault) {
  switch (fault) {
    case ProfileFault::kNone:
      return "is a profile";
    case ProfileFault::kMissing:
      return "does not exist";
    case ProfileFault::kUnreadable:
      return "cannot be read";
    case ProfileFault::kNotRegular:
      return "is not a regular file";
    case ProfileFault::kTooLarge:
      return "is too large for a profile";
    case ProfileFault::kNotAProfile:
      return "is not an ICC profile";
    case ProfileFault::kIncomplete:
      return "is shorter than its header states";
  }
  return "cannot be used";
}

// --- the desktop as a whole

Finding aboutWayland(const desktop::WaylandReport& wayland) {
  const std::string compositor = "the compositor at " + wayland.socket;
  switch (wayland.state) {
    case WaylandState::kNotNamed:
      return missing(kWayland, "WAYLAND_DISPLAY is not set, so no compositor can be queried",
                     "export WAYLAND_DISPLAY=wayland-0, in a Wayland session");
    case WaylandState::kNoLibrary:
      return missing(kWayland,
                     "libOstrevinWayland.so, which needs libwayland-client.so.0, cannot be loaded; without it "
                     "there are no names, and no scale of a single display",
                     "apt-get install libwayland-client0");
    case WaylandState::kRefused:
      return missing(kWayland, "there is no compositor at " + wayland.socket + ", or it refuses this user",
                     "unset WAYLAND_DISPLAY, or run this in the session of the user who is logged in");
    case WaylandState::kSilent:
      return missing(kWayland, compositor + " does not respond", "end the program that blocks it, or log in again");
    case WaylandState::kOld:
      return missing(kWayland,
                     compositor + " gives no names of outputs or no areas in points: it lacks " +
                         (wayland.area_version == 0 ? "zxdg_output_manager_v1" : "wl_output version 4"),
                     "install a newer compositor");
    case WaylandState::kReady:
      break;
  }
  if (wayland.shown.arrangement.displays.empty()) {
    return missing(kWayland, compositor + " has no output that is on", "wlr-randr --output NAME --on");
  }
  return good(kWayland, wayland.socket + ", wl_output " + std::to_string(wayland.output_version) +
                            ", zxdg_output_manager_v1 " + std::to_string(wayland.area_version) + ", " +
                            counted(wayland.shown.arrangement.displays.size(), "display", "displays"));
}

Finding aboutXServer(const desktop::XServerReport& x) {
  const std::string server = "the X server " + x.display;
  const std::string query = "DISPLAY=" + shellWord(x.display) + " xrandr --query";
  switch (x.state) {
    case XServerState::kNotNamed:
      return missing(kXServer, "DISPLAY is not set, so no X server can be queried",
                     "export DISPLAY=:0, in a session with an X server");
    case XServerState::kRefused:
      return missing(kXServer, "there is no X server " + x.display + ", or it refuses this user",
                     query + ", which prints the reason");
    case XServerState::kSilent:
      return missing(kXServer, server + " does not respond", "end the program that blocks it, or log in again");
    case XServerState::kNoRandr:
      return missing(kXServer, server + " lacks RandR 1.2, which lists the displays",
                     "start it without \"-extension RANDR\"");
    case XServerState::kReady:
      break;
  }
  if (x.shown.arrangement.displays.empty()) {
    return missing(kXServer, server + " has no display that is on",
                   "DISPLAY=" + shellWord(x.display) + " xrandr --auto");
  }
  return good(kXServer, x.display + ", RandR 1." + std::to_string(x.randr_minor) + ", " +
                            counted(x.shown.arrangement.displays.size(), "display", "displays") + ", scale " +
                            numberText(x.scale));
}

Finding aboutColord(const desktop::ColordReport& colord) {
  switch (colord.state) {
    case ColordState::kNoBus:
      return missing(kColord, "the system bus cannot be reached, nor colord, which stores the profiles",
                     "systemctl start dbus");
    case ColordState::kNotInstalled:
      return missing(kColord, "the system bus has no colord, which stores the displays' profiles",
                     "apt-get install colord, or if it is installed: systemctl start colord");
    case ColordState::kSilent:
      return missing(kColord, "colord does not start or does not respond", "systemctl restart colord");
    case ColordState::kReady:
      break;
  }
  return good(kColord, "running, " + counted(colord.devices.size(), "display device", "display devices"));
}

void addFolders(std::vector<Finding>& findings) {
  std::size_t profiles = 0;
  for (const desktop::ProfileFolder& folder : desktop::examineProfileFolders()) {
    profiles += folder.profiles;
    findings.push_back(folder.readable
                           ? good(kFiles, folder.path + ": " + counted(folder.profiles, "profile", "profiles"))
                           : missing(kFiles, folder.path + " cannot be read", "chmod a+rx " + shellWord(folder.path)));
    for (std::size_t i = 0; i < std::min(folder.faults.size(), kMostFaults); ++i) {
      const auto& [path, fault] = folder.faults[i];
      const bool needs_right = fault == ProfileFault::kUnreadable;
      findings.push_back(
          missing(kFiles, path + " " + wordsFor(fault), (needs_right ? "chmod a+r " : "rm -- ") + shellWord(path)));
    }
    if (folder.faults.size() > kMostFaults) {
      findings.push_back(missing(
          kFiles,
          folder.path + ": " + std::to_string(folder.faults.size() - kMostFaults) + " more files are not profiles",
          "fix those above, then run doctor again"));
    }
  }
  if (profiles == 0) {
    findings.push_back(missing(kFiles, "no profile is installed", "apt-get install colord-data"));
  }
}

// --- one display

std::string hexadecimal(std::uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%04x", number);
  return text;
}

/// The monitor that a display is made of; null when there is none.
const desktop::Monitor* monitorOf(const desktop::ShownDisplays& shown, const desktop::Display& display) {
  const auto found = std::find_if(shown.monitors.begin(), shown.monitors.end(), [&](const desktop::Monitor& monitor) {
    return monitor.connector == display.connector;
  });
  return found == shown.monitors.end() ? nullptr : &*found;
}

/// About a display of a compositor, Xwayland included, for whose output Linux has no connector.
Finding aboutVirtualOutput(const desktop::Monitor& monitor, bool is_xwayland) {
  const std::string text = "Linux has no connector " + monitor.connector;
  if (is_xwayland) {
    return missing(kEdid, text + ", and Xwayland passes no EDIDs, so it has no name",
                   "export WAYLAND_DISPLAY=wayland-0, and not --desktop x11");
  }
  return note(kEdid, text + ": a virtual output, which the compositor names \"" + monitor.described_name + "\"");
}

Finding aboutEdid(const desktop::ShownDisplays& shown, bool is_x_server, bool is_xwayland, std::size_t index) {
  const desktop::Display& display = shown.arrangement.displays[index];
  const desktop::Monitor* const monitor = monitorOf(shown, display);
  if (display.connector.empty() || monitor == nullptr) {
    return note(kEdid, "a part of the screen without an output, which has no EDID and no name");
  }
  const bool from_linux = !is_x_server || is_xwayland;
  if (from_linux && monitor->edid.empty() && monitor->edid_path.empty()) {
    return aboutVirtualOutput(*monitor, is_xwayland);
  }
  const std::string remedy = kEdidFile + display.connector + ":edid/FILE.bin";
  const std::string place = monitor->edid_path.empty() ? "" : ", from " + monitor->edid_path;
  const auto& edid = shown.edids[index];
  if (!edid) {
    const std::string name =
        monitor->described_name.empty() ? "so it has no name" : "so its name comes from the compositor";
    return missing(
        kEdid,
        (monitor->edid.empty() ? "the monitor sends no EDID, " : "the monitor's EDID is invalid, ") + name + place,
        remedy);
  }
  const std::string numbers = "vendor " + hexadecimal(edid->vendor) + ", product " + hexadecimal(edid->product) +
                              ", serial " + std::to_string(edid->serial) + place;
  return edid->name ? good(kEdid, "\"" + *edid->name + "\", " + numbers)
                    : missing(kEdid, numbers + ", and no name", remedy);
}

Finding aboutFile(const std::string& path, const std::string& remedy) {
  const ProfileFault fault = desktop::faultOfProfile(path);
  return fault == ProfileFault::kNone ? good(kProfile, path) : missing(kProfile, path + " " + wordsFor(fault), remedy);
}

void addColord(std::vector<Finding>& findings, const desktop::ColordReport& colord, std::size_t index,
               std::uint32_t number) {
  if (colord.state != ColordState::kReady) {
    return;  // reported once for all displays
  }
  const auto match = colord.matches[index];
  if (!match) {
    findings.push_back(missing(kColord, "has no device for this display", assignCommand(number)));
    return;
  }
  const desktop::ColordDevice& device = colord.devices[*match];
  if (device.profiles.empty()) {
    findings.push_back(missing(kColord, "the device " + device.id + " has no profile", assignCommand(number)));
    return;
  }
  findings.push_back(
      good(kColord, "device " + device.id + ", " + counted(device.profiles.size(), "profile", "profiles")));
  const std::string& path = device.profiles.front().filename;
  findings.push_back(path.empty() ? missing(kProfile, "the profile in use has no file", assignCommand(number))
                                  : aboutFile(path, assignCommand(number)));
}

desktop::WaylandReport waitForWayland() {
  if (environmentText("WAYLAND_DISPLAY").empty()) {
    return {};
  }
  const Waiting waiting(kWayland);
  return desktop::waylandPart().ask();
}

desktop::XServerReport waitForXServer() {
  const Waiting waiting(kXServer);
  return desktop::x11Part().ask();
}

desktop::ColordReport waitForColord(const std::vector<platform::desktop::Display>& displays) {
  const Waiting waiting(kColord);
  return desktop::colordPart().ask(displays);
}

std::string placeOf(const desktop::ShownDisplays& shown, std::size_t index) {
  const desktop::Display& display = shown.arrangement.displays[index];
  const desktop::Rect& bounds = display.bounds;
  return (display.connector.empty() ? "" : display.connector + ", ") + numberText(bounds.width) + " x " +
         numberText(bounds.height) + " at " + numberText(bounds.x) + ", " + numberText(bounds.y);
}

Diagnosis examineLive(const Plugin& plugin, LiveSource source) {
  Diagnosis diagnosis;
  const auto wayland = source == LiveSource::kX11 ? desktop::WaylandReport() : waitForWayland();
  const bool is_named = wayland.state != WaylandState::kNotNamed;
  // As the live desktop chooses.
  const bool only_wayland =
      source == LiveSource::kWayland || wayland.state == WaylandState::kReady || wayland.state == WaylandState::kSilent;
  const auto x = only_wayland ? desktop::XServerReport() : waitForXServer();
  const bool is_x_server = !only_wayland && (x.state == XServerState::kReady || wayland.state != WaylandState::kOld);
  const desktop::ShownDisplays& shown = is_x_server ? x.shown : wayland.shown;
  const auto& displays = shown.arrangement.displays;
  const desktop::ColordReport colord = waitForColord(displays);
  if (is_named || only_wayland) {
    diagnosis.findings.push_back(aboutWayland(wayland));
  }
  if (!only_wayland) {
    diagnosis.findings.push_back(aboutXServer(x));
  }
  diagnosis.findings.push_back(aboutColord(colord));
  addFolders(diagnosis.findings);
  for (std::size_t i = 0; i < displays.size(); ++i) {
    DisplayFindings about{displays[i].number, nameOf(plugin, displays[i].number), {}};
    const desktop::Monitor* const monitor = monitorOf(shown, displays[i]);
    const std::string scale = is_x_server || monitor == nullptr || !monitor->backing_scale
                                  ? std::string()
                                  : ", scale " + numberText(*monitor->backing_scale);
    about.findings.push_back(
        good(is_x_server ? "RandR" : kWayland, placeOf(shown, i) + scale + (i == 0 ? ", main" : "")));
    about.findings.push_back(aboutEdid(shown, is_x_server, x.is_xwayland, i));
    addColord(about.findings, colord, i, about.number);
    diagnosis.displays.push_back(std::move(about));
  }
  return diagnosis;
}

// --- a desktop that a file describes

Diagnosis examineFile(const Plugin& plugin, const std::string& file) {
  constexpr const char* kSource = "desktop file";
  constexpr const char* kUnknownName = "UNKNOWN";
  Diagnosis diagnosis;
  const std::vector<Display> displays = describeDisplays(plugin);
  const std::string remedy = "edit " + shellWord(file) + " (docs/desktop-file.md)";
  diagnosis.findings.push_back(note(kSource, file + " describes the desktop; the computer's own is not queried"));
  if (displays.empty()) {
    diagnosis.findings.push_back(missing(kSource, "has no displays", remedy));
  }
  for (const Display& display : displays) {
    DisplayFindings about{display.number, display.name, {}};
    about.findings.push_back(display.name == kUnknownName ? missing("name", "the display has none", remedy)
                                                          : good("name", display.name));
    about.findings.push_back(display.profile.empty() ? missing(kProfile, "the display has none", remedy)
                                                     : aboutFile(display.profile, remedy));
    diagnosis.displays.push_back(std::move(about));
  }
  return diagnosis;
}

}  // namespace

Diagnosis examineDesktop(const Plugin& plugin) {
  const std::string word = environmentText("OSTREVIN_DESKTOP");  // chooseDesktop() sets it for the option, too
  const auto source = word.empty() ? LiveSource::kAny : desktop::liveSourceNamed(word);
  return source ? examineLive(plugin, *source) : examineFile(plugin, word);
}

}  // namespace devhost::tool
