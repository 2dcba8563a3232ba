#include "desktop/x11/x11_monitors.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace platform::desktop {
namespace {

// The minor versions of RandR 1 that introduced these.
constexpr std::uint32_t kHasOutputs = 2;
constexpr std::uint32_t kHasCurrentResources = 3;
constexpr std::uint32_t kHasPrimaryOutput = 3;
constexpr std::uint32_t kHasMonitors = 5;

constexpr std::uint32_t kLargestEdidWords = 256 * 128 / 4;  // an EDID counts at most 255 extension blocks

std::string textOf(std::span<const std::uint8_t> bytes, std::size_t size) {
  return {reinterpret_cast<const char*>(bytes.data()), std::min(size, bytes.size())};
}

/// The monitors in a reply, as far as its bytes have arrived.
std::vector<Monitor> parseMonitors(const xcb_randr_get_monitors_reply_t& reply) {
  std::vector<Monitor> monitors;
  auto rest = payload(reply);
  xcb_randr_monitor_info_t info;
  for (std::uint32_t i = 0; i < reply.nMonitors && rest.size() >= sizeof(info); ++i) {
    std::memcpy(&info, rest.data(), sizeof(info));
    rest = rest.subspan(sizeof(info));
    const std::size_t outputs_size = std::size_t{info.nOutput} * sizeof(xcb_randr_output_t);
    if (outputs_size > rest.size()) {
      break;
    }
    Monitor monitor;
    monitor.name_atom = info.name;
    monitor.x = info.x;
    monitor.y = info.y;
    monitor.width = info.width;
    monitor.height = info.height;
    monitor.primary = info.primary != 0;
    if (info.nOutput != 0) {
      std::memcpy(&monitor.output, rest.data(), sizeof(monitor.output));
    }
    rest = rest.subspan(outputs_size);
    monitors.push_back(std::move(monitor));
  }
  return monitors;
}

/// The outputs in either reply that lists a screen's resources; they follow the CRTCs, which have ids of the same size.
template <typename Reply>
std::vector<xcb_randr_output_t> parseOutputs(const Reply& reply) {
  const auto bytes = payload(reply);
  const std::size_t begin = std::size_t{reply.num_crtcs} * sizeof(xcb_randr_crtc_t);
  const std::size_t size = std::size_t{reply.num_outputs} * sizeof(xcb_randr_output_t);
  std::vector<xcb_randr_output_t> outputs;
  if (size != 0 && begin + size <= bytes.size()) {
    outputs.resize(reply.num_outputs);
    std::memcpy(outputs.data(), bytes.data() + begin, size);
  }
  return outputs;
}

/// An output's name follows its CRTCs, modes and clones.
std::string parseOutputName(const xcb_randr_get_output_info_reply_t& reply) {
  const auto bytes = payload(reply);
  const std::size_t ids = std::size_t{reply.num_crtcs} + reply.num_modes + reply.num_clones;
  const std::size_t begin = std::min(ids * sizeof(std::uint32_t), bytes.size());
  return textOf(bytes.subspan(begin), reply.name_len);
}

}  // namespace

X11Monitors::X11Monitors(X11Connection& connection, std::uint32_t newest_minor) : connection_(connection) {
  const xcb_query_extension_reply_t* const extension = connection_.extension(xcb_randr_id);
  if (extension == nullptr || extension->present == 0) {
    return;
  }
  first_event_ = extension->first_event;
  const auto version =
      connection_.reply(xcb_randr_query_version_reply, xcb_randr_query_version(connection_.xcb(), 1, newest_minor));
  if (!version || version->major_version != 1 || version->minor_version < kHasOutputs) {
    return;
  }
  minor_ = std::min(version->minor_version, newest_minor);
  edid_atom_ = connection_.atoms({"EDID"}).front();
  selectEvents();
}

void X11Monitors::selectEvents() {
  // A change of a user-defined monitor is reported as a change of the root window only; see X11Session.
  constexpr std::uint16_t kEvents = XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                    XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY;
  xcb_randr_select_input(connection_.xcb(), connection_.root(), kEvents);
}

bool X11Monitors::isChange(const xcb_generic_event_t& event) const {
  if (minor_ == 0) {
    return false;
  }
  if (eventCode(event) == first_event_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY) {
    return true;
  }
  if (eventCode(event) != first_event_ + XCB_RANDR_NOTIFY) {
    return false;
  }
  const auto& notify = reinterpret_cast<const xcb_randr_notify_event_t&>(event);
  return notify.subCode != XCB_RANDR_NOTIFY_OUTPUT_PROPERTY || notify.u.op.atom == edid_atom_;
}

std::optional<std::vector<Monitor>> X11Monitors::read() {
  if (minor_ == 0) {
    return connection_.isLost() ? std::nullopt : std::optional(std::vector<Monitor>());
  }
  return has(kHasMonitors) ? readMonitors() : readOutputs();
}

std::optional<std::vector<Monitor>> X11Monitors::readMonitors() {
  const auto reply =
      connection_.reply(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(connection_.xcb(), connection_.root(), 1));
  if (!reply) {
    return std::nullopt;
  }
  auto monitors = parseMonitors(*reply);
  if (!nameMonitors(monitors) || !describeOutputs(monitors)) {
    return std::nullopt;
  }
  readEdids(monitors);
  return monitors;
}

std::optional<std::vector<Monitor>> X11Monitors::readOutputs() {
  const auto ids = listOutputs();
  if (!ids) {
    return std::nullopt;
  }
  const xcb_randr_output_t primary = primaryOutput();
  std::vector<Monitor> outputs(ids->size());
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    outputs[i].output = (*ids)[i];
    outputs[i].primary = (*ids)[i] == primary;
  }
  const auto crtcs = describeOutputs(outputs);
  if (!crtcs || !placeOutputs(outputs, *crtcs)) {
    return std::nullopt;
  }
  std::erase_if(outputs, [](const Monitor& output) { return output.width == 0 || output.height == 0; });
  readEdids(outputs);
  return outputs;
}

std::optional<std::vector<xcb_randr_output_t>> X11Monitors::listOutputs() {
  if (has(kHasCurrentResources)) {
    const auto reply = connection_.reply(xcb_randr_get_screen_resources_current_reply,
                                         xcb_randr_get_screen_resources_current(connection_.xcb(), connection_.root()));
    return reply ? std::optional(parseOutputs(*reply)) : std::nullopt;
  }
  const auto reply = connection_.reply(xcb_randr_get_screen_resources_reply,
                                       xcb_randr_get_screen_resources(connection_.xcb(), connection_.root()));
  return reply ? std::optional(parseOutputs(*reply)) : std::nullopt;
}

xcb_randr_output_t X11Monitors::primaryOutput() {
  if (!has(kHasPrimaryOutput)) {
    return XCB_NONE;
  }
  const auto reply = connection_.reply(xcb_randr_get_output_primary_reply,
                                       xcb_randr_get_output_primary(connection_.xcb(), connection_.root()));
  return reply ? reply->output : xcb_randr_output_t{XCB_NONE};
}

bool X11Monitors::nameMonitors(std::vector<Monitor>& monitors) {
  std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
  for (const Monitor& monitor : monitors) {
    if (names_.count(monitor.name_atom) == 0) {
      asked.emplace_back(monitor.name_atom, xcb_get_atom_name(connection_.xcb(), monitor.name_atom));
    }
  }
  for (const auto& [atom, cookie] : asked) {
    if (const auto reply = connection_.reply(xcb_get_atom_name_reply, cookie)) {
      names_[atom] = textOf(payload(*reply), reply->name_len);
    }
  }
  for (Monitor& monitor : monitors) {
    const auto name = names_.find(monitor.name_atom);
    if (name == names_.end()) {
      return false;
    }
    monitor.name = name->second;
  }
  return true;
}

std::optional<std::vector<xcb_randr_crtc_t>> X11Monitors::describeOutputs(std::vector<Monitor>& monitors) {
  std::vector<xcb_randr_get_output_info_cookie_t> cookies;
  for (const Monitor& monitor : monitors) {
    if (monitor.output != XCB_NONE) {
      cookies.push_back(xcb_randr_get_output_info(connection_.xcb(), monitor.output, XCB_CURRENT_TIME));
    }
  }
  bool complete = true;
  std::vector<xcb_randr_crtc_t> crtcs;
  auto cookie = cookies.begin();
  for (Monitor& monitor : monitors) {
    crtcs.push_back(XCB_NONE);
    if (monitor.output == XCB_NONE) {
      continue;
    }
    const auto reply = connection_.reply(xcb_randr_get_output_info_reply, *cookie++);
    if (!reply || reply->status != XCB_RANDR_SET_CONFIG_SUCCESS) {
      complete = false;  // the other replies must still be fetched
      continue;
    }
    monitor.connector = parseOutputName(*reply);
    crtcs.back() = reply->crtc;
  }
  return complete ? std::optional(crtcs) : std::nullopt;
}

void X11Monitors::readEdids(std::vector<Monitor>& monitors) {
  constexpr std::uint8_t kKeep = 0;
  constexpr std::uint8_t kCurrent = 0;
  std::vector<xcb_randr_get_output_property_cookie_t> cookies;
  for (const Monitor& monitor : monitors) {
    if (monitor.output != XCB_NONE) {
      cookies.push_back(xcb_randr_get_output_property(connection_.xcb(), monitor.output, edid_atom_, XCB_ATOM_ANY, 0,
                                                      kLargestEdidWords, kKeep, kCurrent));
    }
  }
  auto cookie = cookies.begin();
  for (Monitor& monitor : monitors) {
    if (monitor.output == XCB_NONE) {
      continue;
    }
    const auto reply = connection_.reply(xcb_randr_get_output_property_reply, *cookie++);
    if (reply && reply->format == kByteFormat) {
      const auto bytes = payload(*reply);
      const auto edid = bytes.first(std::min<std::size_t>(reply->num_items, bytes.size()));
      monitor.edid.assign(edid.begin(), edid.end());
    }
  }
}

bool X11Monitors::placeOutputs(std::vector<Monitor>& outputs, const std::vector<xcb_randr_crtc_t>& crtcs) {
  std::vector<xcb_randr_get_crtc_info_cookie_t> cookies;
  for (const xcb_randr_crtc_t crtc : crtcs) {
    if (crtc != XCB_NONE) {
      cookies.push_back(xcb_randr_get_crtc_info(connection_.xcb(), crtc, XCB_CURRENT_TIME));
    }
  }
  bool complete = true;
  auto cookie = cookies.begin();
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (crtcs[i] == XCB_NONE) {
      continue;
    }
    const auto reply = connection_.reply(xcb_randr_get_crtc_info_reply, *cookie++);
    if (!reply || reply->status != XCB_RANDR_SET_CONFIG_SUCCESS) {
      complete = false;
      continue;
    }
    outputs[i].name = outputs[i].connector;
    outputs[i].x = reply->x;
    outputs[i].y = reply->y;
    outputs[i].width = reply->width;
    outputs[i].height = reply->height;
  }
  return complete;
}

}  // namespace platform::desktop
