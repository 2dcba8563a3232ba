#include <cstdlib>

#include "desktop/diagnosis/diagnosis.h"
#include "desktop/model/detached_thread.h"
#include "desktop/x11/x11_displays.h"
#include "desktop/x11/x11_session.h"

namespace platform::desktop {
namespace {

/// Waits for the server without a limit.
XServerReport ask(XServerReport report) {
  const auto session = X11Session::open(report.display, X11Options().newest_randr_minor);
  auto read = session ? session->read() : std::nullopt;
  if (!read) {
    return report;
  }
  report.randr_minor = session->randrMinor();
  report.scale = read->scale;
  report.is_xwayland = session->isXwayland();
  report.shown = ShownDisplays(std::move(read->monitors), read->scale);
  report.state = report.randr_minor == 0 ? XServerState::kNoRandr : XServerState::kReady;
  return report;
}

}  // namespace

XServerReport askXServer() {
  const char* const display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') {
    return {};
  }
  auto report = runDetached(
      [initial = XServerReport{.state = XServerState::kRefused, .display = display}] { return ask(initial); });
  return report.wait_for(kXServerLimit) == std::future_status::ready
             ? report.get()
             : XServerReport{.state = XServerState::kSilent, .display = display};
}

}  // namespace platform::desktop
