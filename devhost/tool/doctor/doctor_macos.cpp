// The sources are the system's frameworks, queried through the plugin.
#include <unistd.h>

#include "devhost/language/value.h"
#include "devhost/tool/doctor/doctor.h"
#include "devhost/tool/session/displays.h"

namespace devhost::tool {
namespace {

constexpr const char* kUnknownName = "UNKNOWN";
constexpr const char* kColorSync = "ColorSync";
constexpr const char* kIOKit = "IOKit";

Finding aboutName(const Display& display) {
  if (display.name != kUnknownName) {
    return good(kIOKit, "\"" + display.name + "\"");
  }
  return missing(kIOKit, "has no display service with a name for it; on Macs with Apple silicon there are none",
                 "none on such a Mac; on others, connect the monitor again");
}

Finding aboutProfile(const Display& display) {
  if (display.profile.empty()) {
    return missing(kColorSync, "has no current profile", assignCommand(display.number));
  }
  if (access(display.profile.c_str(), R_OK) != 0) {
    return missing(kColorSync, display.profile + " does not exist or cannot be read", assignCommand(display.number));
  }
  return good(kColorSync, display.profile);
}

}  // namespace

Diagnosis examineDesktop(const Plugin& plugin) {
  Diagnosis diagnosis;
  const std::vector<Display> displays = describeDisplays(plugin);
  diagnosis.findings.push_back(displays.empty()
                                   ? missing("CoreGraphics", "has no active display for this process",
                                             "run it in a user's session at the screen, not over a remote shell")
                                   : good("CoreGraphics", "active displays: " + std::to_string(displays.size())));
  for (const Display& display : displays) {
    diagnosis.displays.push_back(
        {display.number,
         display.name,
         {good("CoreGraphics", numberText(display.width) + " x " + numberText(display.height) + " at " +
                                   numberText(display.x) + ", " + numberText(display.y)),
          good("AppKit", "scale " + numberText(display.scale)), aboutName(display), aboutProfile(display)}});
  }
  return diagnosis;
}

}  // namespace devhost::tool
