#include "desktop/x11/x11_settings.h"

#include "desktop/x11/desktop_scale.h"

namespace platform::desktop {
namespace {

constexpr std::uint32_t kLargestPropertyWords = 1 << 18;  // 1 MiB

std::optional<double> dpiFrom(const xcb_get_property_reply_t& resources) {
  const auto bytes = propertyBytes(resources);
  return xftDpi({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

X11Settings::X11Settings(X11Connection& connection) : connection_(connection) {
  const auto atoms = connection_.atoms(
      {"_XSETTINGS_S" + std::to_string(connection_.screenNumber()), "_XSETTINGS_SETTINGS", "MANAGER"});
  selection_ = atoms[0];
  settings_ = atoms[1];
  manager_message_ = atoms[2];
}

double X11Settings::readScale() {
  const auto factor = readScalingFactor();
  if (factor) {
    return backingScale(factor, std::nullopt);
  }
  const auto resources = connection_.reply(
      xcb_get_property_reply, xcb_get_property(connection_.xcb(), 0, connection_.firstRoot(), XCB_ATOM_RESOURCE_MANAGER,
                                               XCB_ATOM_STRING, 0, kLargestPropertyWords));
  return backingScale(std::nullopt, resources ? dpiFrom(*resources) : std::nullopt);
}

std::optional<int> X11Settings::readScalingFactor() {
  const auto owner =
      connection_.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(connection_.xcb(), selection_));
  manager_ = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
  if (manager_ == XCB_WINDOW_NONE) {
    return std::nullopt;
  }
  // The events are selected before the settings are read, so that no change is missed. If the manager has gone
  // meanwhile, both requests fail, and its successor announces itself.
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_.xcb(), manager_, XCB_CW_EVENT_MASK, &events);
  const auto property = connection_.reply(
      xcb_get_property_reply,
      xcb_get_property(connection_.xcb(), 0, manager_, settings_, XCB_ATOM_ANY, 0, kLargestPropertyWords));
  return property ? windowScalingFactor(propertyBytes(*property)) : std::nullopt;
}

bool X11Settings::isChange(const xcb_generic_event_t& event) const {
  switch (eventCode(event)) {
    case XCB_PROPERTY_NOTIFY: {
      const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      return (change.window == connection_.firstRoot() && change.atom == XCB_ATOM_RESOURCE_MANAGER) ||
             (change.window == manager_ && change.atom == settings_);
    }
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      return message.type == manager_message_ && message.data.data32[1] == selection_;
    }
    case XCB_DESTROY_NOTIFY:
      return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == manager_;
    default:
      return false;
  }
}

}  // namespace platform::desktop
