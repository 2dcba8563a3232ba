#include "desktop/colord/colord_matching.h"

#include <colord.h>

#include <algorithm>
#include <string_view>
#include <tuple>

#include "desktop/colord/glib_refs.h"
#include "desktop/model/connector.h"

namespace platform::desktop {
namespace {

/// Null for an invalid EDID.
ObjectRef<CdEdid> parseEdid(const std::vector<std::uint8_t>& bytes) {
  if (bytes.empty()) {
    return nullptr;
  }
  ObjectRef<CdEdid> edid(cd_edid_new());
  const std::unique_ptr<GBytes, decltype(&g_bytes_unref)> data(g_bytes_new(bytes.data(), bytes.size()), g_bytes_unref);
  ErrorSlot error;
  return cd_edid_parse(edid.get(), data.get(), error.place()) ? std::move(edid) : nullptr;
}

std::string checksumOf(const std::vector<std::uint8_t>& bytes) {
  if (bytes.empty()) {
    return {};
  }
  const std::unique_ptr<char, decltype(&g_free)> digits(
      g_compute_checksum_for_data(G_CHECKSUM_MD5, bytes.data(), bytes.size()), g_free);
  return textOf(digits.get());
}

/// The identity of a display's monitor, from its EDID.
struct Monitor {
  explicit Monitor(const std::vector<std::uint8_t>& bytes) : md5(checksumOf(bytes)) {
    if (const ObjectRef<CdEdid> edid = parseEdid(bytes)) {
      model = textOf(cd_edid_get_monitor_name(edid.get()));
      serial = textOf(cd_edid_get_serial_number(edid.get()));
    }
  }

  std::string md5;  ///< empty without an EDID
  std::optional<std::string> model;
  std::optional<std::string> serial;
};

bool hasConnector(const ColordDevice& device, const Display& display) {
  return !display.connector.empty() && commonConnectorName(display.connector) == commonConnectorName(device.connector);
}

/// How well a device fits a display; 0 for not at all.
int fit(const Display& display, const Monitor& monitor, const ColordDevice& device) {
  const bool same_connector = hasConnector(device, display);
  if (same_connector && monitor.md5 == device.edid_md5) {
    return 4;
  }
  if (!monitor.md5.empty() && !device.edid_md5.empty()) {
    return monitor.md5 == device.edid_md5 ? 2 : 0;
  }
  if (same_connector) {
    return 3;
  }
  const bool same_names = !device.model.empty() && device.model == monitor.model && device.serial == monitor.serial;
  return device.edid_md5.empty() && same_names ? 1 : 0;
}

struct Candidate {
  int fit;
  std::size_t display;
  std::size_t device;
};

std::vector<Candidate> candidates(const std::vector<Display>& displays, const std::vector<ColordDevice>& devices) {
  std::vector<Candidate> found;
  for (std::size_t display = 0; display < displays.size(); ++display) {
    const Monitor monitor(displays[display].edid);
    for (std::size_t device = 0; device < devices.size(); ++device) {
      if (const int value = fit(displays[display], monitor, devices[device])) {
        found.push_back({value, display, device});
      }
    }
  }
  return found;
}

/// The monitor's names, joined as colord joins them; just "xrandr" without names.
std::string monitorId(CdEdid* edid) {
  std::string id = "xrandr";
  if (edid == nullptr) {
    return id;
  }
  for (const char* part :
       {cd_edid_get_vendor_name(edid), cd_edid_get_monitor_name(edid), cd_edid_get_serial_number(edid)}) {
    if (part != nullptr) {
      id += std::string("-") + part;
    }
  }
  return id;
}

bool sharesEdid(const std::vector<Display>& displays, std::size_t display) {
  return std::count_if(displays.begin(), displays.end(),
                       [&](const Display& other) { return other.edid == displays[display].edid; }) > 1;
}

std::string chooseId(const std::vector<Display>& displays, std::size_t display, CdEdid* edid,
                     const std::vector<ColordDevice>& devices) {
  const auto taken = [&](const std::string& id) {
    return std::any_of(devices.begin(), devices.end(), [&](const ColordDevice& device) { return device.id == id; });
  };
  std::string monitor = monitorId(edid);
  if (monitor != "xrandr" && !sharesEdid(displays, display) && !taken(monitor)) {
    return monitor;
  }
  const std::string by_connector = "xrandr-" + displays[display].connector;
  std::string id = by_connector;
  for (unsigned number = 2; taken(id); ++number) {
    id = by_connector + "-" + std::to_string(number);
  }
  return id;
}

/// colord's spelling of a device's id.
std::string asInObjectPath(std::string name) {
  std::replace_if(
      name.begin(), name.end(), [](char byte) { return g_ascii_isalnum(byte) == FALSE; }, '_');
  return name;
}

bool isBuiltIn(std::string_view connector) {
  return connector.starts_with("eDP") || connector.starts_with("LVDS") || connector.starts_with("DSI");
}

}  // namespace

std::vector<std::optional<std::size_t>> matchDevices(const std::vector<Display>& displays,
                                                     const std::vector<ColordDevice>& devices) {
  std::vector<Candidate> pairs = candidates(displays, devices);
  const auto rank = [&](const Candidate& pair) {
    const ColordDevice& device = devices[pair.device];
    return std::tuple(-pair.fit, !device.physical, -static_cast<std::int64_t>(device.modified),
                      std::string_view(device.object_path), pair.display);
  };
  std::sort(pairs.begin(), pairs.end(),
            [&](const Candidate& left, const Candidate& right) { return rank(left) < rank(right); });
  std::vector<std::optional<std::size_t>> matches(displays.size());
  std::vector<bool> used(devices.size(), false);
  for (const Candidate& pair : pairs) {
    if (!matches[pair.display] && !used[pair.device]) {
      matches[pair.display] = pair.device;
      used[pair.device] = true;
    }
  }
  return matches;
}

std::function<bool(const std::string& object_path)> namedAfter(const std::vector<Display>& displays) {
  std::vector<std::string> names;
  for (const Display& display : displays) {
    for (const std::string& name :
         {display.connector, commonConnectorName(display.connector), Monitor(display.edid).model.value_or("")}) {
      if (!name.empty()) {
        names.push_back(asInObjectPath(name));
      }
    }
  }
  return [names = std::move(names)](const std::string& path) {
    const std::string_view id = std::string_view(path).substr(path.rfind('/') + 1);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& name) { return id.find(name) != std::string_view::npos; });
  };
}

bool haveOwnDevices(const std::vector<Display>& displays, const std::vector<ColordDevice>& devices) {
  return std::all_of(displays.begin(), displays.end(), [&](const Display& display) {
    const std::string md5 = checksumOf(display.edid);
    return std::any_of(devices.begin(), devices.end(), [&](const ColordDevice& device) {
      return hasConnector(device, display) && device.edid_md5 == md5;
    });
  });
}

ColordRegistration registrationFor(const std::vector<Display>& displays, std::size_t display,
                                   const std::vector<ColordDevice>& devices) {
  const Display& registered = displays[display];
  const ObjectRef<CdEdid> edid = parseEdid(registered.edid);
  ColordRegistration registration;
  registration.id = chooseId(displays, display, edid.get(), devices);
  const auto add = [&](const char* name, std::string value) {
    if (!value.empty()) {
      registration.properties.emplace_back(name, std::move(value));
    }
  };
  add(CD_DEVICE_PROPERTY_KIND, cd_device_kind_to_string(CD_DEVICE_KIND_DISPLAY));
  add(CD_DEVICE_PROPERTY_MODE, cd_device_mode_to_string(CD_DEVICE_MODE_PHYSICAL));
  add(CD_DEVICE_PROPERTY_COLORSPACE, cd_colorspace_to_string(CD_COLORSPACE_RGB));
  if (edid) {
    add(CD_DEVICE_PROPERTY_VENDOR, textOf(cd_edid_get_vendor_name(edid.get())));
    add(CD_DEVICE_PROPERTY_MODEL, textOf(cd_edid_get_monitor_name(edid.get())));
    add(CD_DEVICE_PROPERTY_SERIAL, textOf(cd_edid_get_serial_number(edid.get())));
  }
  if (isBuiltIn(registered.connector)) {
    add(CD_DEVICE_PROPERTY_EMBEDDED, "True");
  }
  add(CD_DEVICE_METADATA_XRANDR_NAME, registered.connector);
  add(CD_DEVICE_METADATA_OUTPUT_EDID_MD5, checksumOf(registered.edid));
  add(CD_DEVICE_METADATA_OUTPUT_PRIORITY,
      display == 0 ? CD_DEVICE_METADATA_OUTPUT_PRIORITY_PRIMARY : CD_DEVICE_METADATA_OUTPUT_PRIORITY_SECONDARY);
  return registration;
}

}  // namespace platform::desktop
