#include <cstdlib>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/model/detached_thread.h"
#include "desktop/x11/x11_displays.h"
#include "desktop/x11/x11_session.h"

namespace platform::desktop {
namespace {

/// Waits for the server without a limit.
XServerReport ask(const std::string& display) {
  XServerReport report{.state = XServerState::kRefused, .display = display};
  const auto session = X11Session::open(display, X11Options().newest_randr_minor);
  auto read = session ? session->read() : std::nullopt;
  if (!read) {
    return report;
  }
  report.randr_minor = session->randrMinor();
  report.scale = read->scale;
  report.monitors = std::move(read->monitors);
  report.arrangement = arrange(report.monitors, report.scale);
  for (const Display& each : report.arrangement.displays) {
    report.edids.push_back(decodeEdid(each.edid));
  }
  report.state = report.randr_minor == 0 ? XServerState::kNoRandr : XServerState::kReady;
  return report;
}

}  // namespace

XServerReport askXServer() {
  const char* const display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') {
    return {};
  }
  auto report = runDetached([name = std::string(display)] { return ask(name); });
  return report.wait_for(kXServerLimit) == std::future_status::ready
             ? report.get()
             : XServerReport{.state = XServerState::kSilent, .display = display};
}

}  // namespace platform::desktop
