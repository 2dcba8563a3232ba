#include "desktop/x11/x11_session.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "desktop/model/connector.h"

namespace platform::desktop {
namespace {

/// The name of an extension without requests, and on older Xwaylands, which lack it, the beginning of the outputs'
/// names.
constexpr std::string_view kXwayland = "XWAYLAND";

/// A reading during which something changes is repeated, up to this number of readings; hasChanged() then stays true.
constexpr int kMostReadings = 4;

}  // namespace

std::unique_ptr<X11Session> X11Session::open(const std::string& display, std::uint32_t newest_randr_minor) {
  auto connection = X11Connection::open(display);
  if (!connection) {
    return nullptr;
  }
  std::unique_ptr<X11Session> session(new X11Session(std::move(connection), newest_randr_minor));
  return session->isLost() ? nullptr : std::move(session);
}

X11Session::X11Session(std::unique_ptr<X11Connection> connection, std::uint32_t newest_randr_minor)
    : connection_(std::move(connection)), monitors_(*connection_, newest_randr_minor), settings_(*connection_) {
  selectRootEvents();
  const auto extension = connection_->reply(
      xcb_query_extension_reply,
      xcb_query_extension(connection_->xcb(), static_cast<std::uint16_t>(kXwayland.size()), kXwayland.data()));
  is_xwayland_ = extension && extension->present != 0;
}

void X11Session::readConnectorEdids(std::vector<Monitor>& monitors) {
  const std::string folder = connectorFolder();
  for (Monitor& monitor : monitors) {
    if (!monitor.edid.empty() || monitor.connector.empty()) {
      continue;
    }
    auto edid = readConnectorEdid(folder, monitor.connector, {});
    if (edid.path.empty() && monitors.size() == 1) {
      edid = readOnlyEdid(folder);  // older Xwaylands have names of their own
    }
    if (!edid.path.empty()) {
      monitor.connector = std::move(edid.connector);
      monitor.edid = std::move(edid.bytes);
      monitor.edid_path = std::move(edid.path);
    }
  }
}

void X11Session::selectRootEvents() {
  // Structure: user-defined monitors, and announcements of settings managers. Properties: the resources.
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(connection_->xcb(), connection_->root(), XCB_CW_EVENT_MASK, &events);
  if (connection_->firstRoot() != connection_->root()) {
    xcb_change_window_attributes(connection_->xcb(), connection_->firstRoot(), XCB_CW_EVENT_MASK, &events);
  }
}

std::optional<X11Reading> X11Session::read() {
  std::optional<std::vector<Monitor>> monitors;
  double scale = 1;
  for (int reading = 0; reading < kMostReadings && (reading == 0 || hasChanged()); ++reading) {
    changed_ = false;
    scale = settings_.readScale();
    monitors = monitors_.read();
    changed_ = !monitors;
  }
  if (isLost()) {
    return std::nullopt;
  }
  if (monitors) {
    is_xwayland_ = is_xwayland_ || std::any_of(monitors->begin(), monitors->end(), [](const Monitor& monitor) {
                     return monitor.connector.starts_with(kXwayland);
                   });
  }
  if (monitors && is_xwayland_) {
    readConnectorEdids(*monitors);
  }
  return X11Reading{scale, std::move(monitors).value_or(std::vector<Monitor>())};
}

bool X11Session::hasChanged() {
  while (const auto event = connection_->nextEvent()) {
    changed_ = changed_ || isChange(*event);
  }
  return changed_;
}

bool X11Session::isChange(const xcb_generic_event_t& event) const {
  if (eventCode(event) == XCB_CONFIGURE_NOTIFY) {
    return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == connection_->root();
  }
  return monitors_.isChange(event) || settings_.isChange(event);
}

}  // namespace platform::desktop
