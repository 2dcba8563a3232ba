#include "desktop/diagnosis/diagnosis.h"
#include "desktop/model/connector.h"
#include "desktop/model/detached_thread.h"
#include "desktop/wayland/wayland_displays.h"
#include "desktop/wayland/wayland_session.h"

namespace platform::desktop {
namespace {

/// Waits for the compositor without a limit.
WaylandReport ask(WaylandReport report) {
  const auto session = WaylandSession::open(report.socket);
  const auto outputs = session ? session->read() : std::nullopt;
  if (!outputs) {
    return report;
  }
  report.state = session->isModern() ? WaylandState::kReady : WaylandState::kOld;
  report.output_version = session->outputVersion();
  report.area_version = session->logicalVersion();
  report.shown = ShownDisplays(monitorsOf(*outputs, connectorFolder()), 1);
  return report;
}

}  // namespace

WaylandReport askWayland() {
  const std::string socket = waylandSocket();
  if (socket.empty()) {
    return {};
  }
  auto report = runDetached(
      [initial = WaylandReport{.state = WaylandState::kRefused, .socket = socket}] { return ask(initial); });
  return report.wait_for(kWaylandLimit) == std::future_status::ready
             ? report.get()
             : WaylandReport{.state = WaylandState::kSilent, .socket = socket};
}

}  // namespace platform::desktop
