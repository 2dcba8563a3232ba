// The sources are the X server with the monitors' EDIDs, colord, and the ICC files; or a desktop file.
#include <algorithm>
#include <cstdlib>

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
using desktop::ProfileFault;
using desktop::XServerState;

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

Finding aboutXServer(const desktop::XServerReport& x) {
  const std::string server = "the X server " + x.display;
  const std::string query = "DISPLAY=" + shellWord(x.display) + " xrandr --query";
  switch (x.state) {
    case XServerState::kNotNamed:
      return environmentText("WAYLAND_DISPLAY").empty()
                 ? missing(kXServer, "DISPLAY is not set, so no X server can be queried",
                           "export DISPLAY=:0, in a session with an X server")
                 : missing(kXServer, "DISPLAY is not set: this Wayland session has no X server",
                           "apt-get install xwayland, and log in again");
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
  if (x.arrangement.displays.empty()) {
    return missing(kXServer, server + " has no display that is on",
                   "DISPLAY=" + shellWord(x.display) + " xrandr --auto");
  }
  return good(kXServer, x.display + ", RandR 1." + std::to_string(x.randr_minor) + ", " +
                            counted(x.arrangement.displays.size(), "display", "displays") + ", scale " +
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

Finding aboutEdid(const desktop::XServerReport& x, std::size_t index) {
  const desktop::Display& display = x.arrangement.displays[index];
  if (display.connector.empty()) {
    return note(kEdid, "a part of the screen without an output, which has no EDID and no name");
  }
  const std::string remedy = kEdidFile + display.connector + ":edid/FILE.bin";
  const auto& edid = x.edids[index];
  if (!edid) {
    const bool has_bytes = std::any_of(x.monitors.begin(), x.monitors.end(), [&](const desktop::Monitor& monitor) {
      return monitor.connector == display.connector && !monitor.edid.empty();
    });
    return missing(
        kEdid,
        has_bytes ? "the monitor's EDID is invalid, so it has no name" : "the monitor sends no EDID, so it has no name",
        remedy);
  }
  const std::string numbers = "vendor " + hexadecimal(edid->vendor) + ", product " + hexadecimal(edid->product) +
                              ", serial " + std::to_string(edid->serial);
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

desktop::XServerReport waitForXServer() {
  const Waiting waiting(kXServer);
  return desktop::x11Part().ask();
}

desktop::ColordReport waitForColord(const std::vector<platform::desktop::Display>& displays) {
  const Waiting waiting(kColord);
  return desktop::colordPart().ask(displays);
}

Diagnosis examineLive(const Plugin& plugin) {
  Diagnosis diagnosis;
  const desktop::XServerReport x = waitForXServer();
  const auto& displays = x.arrangement.displays;
  const desktop::ColordReport colord = waitForColord(displays);
  diagnosis.findings = {aboutXServer(x), aboutColord(colord)};
  addFolders(diagnosis.findings);
  for (std::size_t i = 0; i < displays.size(); ++i) {
    const desktop::Rect& bounds = displays[i].bounds;
    DisplayFindings about{displays[i].number, nameOf(plugin, displays[i].number), {}};
    about.findings.push_back(good("RandR", (displays[i].connector.empty() ? "" : displays[i].connector + ", ") +
                                               numberText(bounds.width) + " x " + numberText(bounds.height) + " at " +
                                               numberText(bounds.x) + ", " + numberText(bounds.y) +
                                               (i == 0 ? ", main" : "")));
    about.findings.push_back(aboutEdid(x, i));
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
  const std::string file = environmentText("OSTREVIN_DESKTOP");  // chooseDesktop() sets it for the option, too
  return file.empty() ? examineLive(plugin) : examineFile(plugin, file);
}

}  // namespace devhost::tool
