#include "desktop/x11/x11_settings.h"

#include <xcb/xcb_xrm.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <string>

namespace platform::desktop {
namespace {

constexpr std::uint32_t kLargestPropertyWords = 1 << 18;  // 1 MiB
constexpr double kDpiOfScale1 = 96;
constexpr double kLargestScale = 16;  // larger settings are ignored as mistakes
constexpr std::string_view kScalingFactorName = "Gdk/WindowScalingFactor";

/// Reads the fields of an XSETTINGS property in order; fields beyond the end are absent.
class SettingsReader {
 public:
  explicit SettingsReader(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  void setBigEndian(bool big_endian) { big_endian_ = big_endian; }

  /// The next `size` bytes as an unsigned number, size at most 4.
  std::optional<std::uint32_t> number(std::size_t size) {
    const auto field = bytes(size);
    if (!field) {
      return std::nullopt;
    }
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = value << 8 | (*field)[big_endian_ ? i : size - 1 - i];
    }
    return value;
  }

  std::optional<std::span<const std::uint8_t>> bytes(std::size_t size) {
    if (size > rest_.size()) {
      return std::nullopt;
    }
    const auto field = rest_.first(size);
    rest_ = rest_.subspan(size);
    return field;
  }

  /// `size` bytes of text, and the padding to a multiple of four.
  std::optional<std::string_view> paddedText(std::size_t size) {
    const auto text = bytes(size);
    if (!text || !bytes((4 - size % 4) % 4)) {
      return std::nullopt;
    }
    return std::string_view(reinterpret_cast<const char*>(text->data()), size);
  }

 private:
  std::span<const std::uint8_t> rest_;
  bool big_endian_ = false;
};

enum class SettingType : std::uint32_t { kInteger = 0, kString = 1, kColor = 2 };

struct Setting {
  std::string_view name;
  std::optional<std::int32_t> integer;  ///< absent for the other types
};

bool skipString(SettingsReader& reader) {
  const auto size = reader.number(4);
  return size && reader.paddedText(*size);
}

std::optional<Setting> readSetting(SettingsReader& reader) {
  constexpr std::size_t kColorSize = 8;
  const auto type = reader.number(1);
  const auto padding = reader.bytes(1);
  const auto name_size = reader.number(2);
  if (!type || !padding || !name_size) {
    return std::nullopt;
  }
  Setting setting;
  const auto name = reader.paddedText(*name_size);
  const auto last_change = reader.number(4);
  if (!name || !last_change) {
    return std::nullopt;
  }
  setting.name = *name;
  bool complete = false;
  switch (static_cast<SettingType>(*type)) {
    case SettingType::kInteger:
      if (const auto value = reader.number(4)) {
        setting.integer = static_cast<std::int32_t>(*value);
        complete = true;
      }
      break;
    case SettingType::kString:
      complete = skipString(reader);
      break;
    case SettingType::kColor:
      complete = reader.bytes(kColorSize).has_value();
      break;
  }
  return complete ? std::optional(setting) : std::nullopt;
}

struct DatabaseFree {
  void operator()(xcb_xrm_database_t* database) const { xcb_xrm_database_free(database); }
};

/// The lines before the first zero byte, without directives: a client's property must not make this process open files.
std::string withoutDirectives(std::string_view resources) {
  resources = resources.substr(0, resources.find('\0'));
  std::string lines;
  while (!resources.empty()) {
    const auto line = resources.substr(0, resources.find('\n'));
    const auto first = line.find_first_not_of(" \t");
    if (first != std::string_view::npos && line[first] != '#') {
      lines.append(line).append("\n");
    }
    resources.remove_prefix(std::min(line.size() + 1, resources.size()));
  }
  return lines;
}

std::optional<double> parseDpi(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) {
    return std::nullopt;
  }
  text = text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
  double dpi = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), dpi);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(dpi) || dpi <= 0) {
    return std::nullopt;
  }
  return dpi;
}

std::optional<double> dpiFrom(const xcb_get_property_reply_t& resources) {
  const auto bytes = propertyBytes(resources);
  return xftDpi({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

std::optional<int> windowScalingFactor(std::span<const std::uint8_t> settings) {
  constexpr std::uint32_t kBigEndian = 1;  // 0 is little-endian
  SettingsReader reader(settings);
  const auto byte_order = reader.number(1);
  const auto padding = reader.bytes(3);
  const auto change_count = reader.number(4);
  if (!byte_order || *byte_order > kBigEndian || !padding || !change_count) {
    return std::nullopt;
  }
  reader.setBigEndian(*byte_order == kBigEndian);
  const auto count = reader.number(4);
  for (std::uint32_t i = 0; count && i < *count; ++i) {
    const auto setting = readSetting(reader);
    if (!setting) {
      return std::nullopt;
    }
    if (setting->name == kScalingFactorName) {
      const bool valid = setting->integer && *setting->integer >= 1 && *setting->integer <= kLargestScale;
      return valid ? std::optional<int>(*setting->integer) : std::nullopt;
    }
  }
  return std::nullopt;
}

std::optional<double> xftDpi(std::string_view resources) {
  const std::unique_ptr<xcb_xrm_database_t, DatabaseFree> database(
      xcb_xrm_database_from_string(withoutDirectives(resources).c_str()));
  char* found = nullptr;
  if (!database || xcb_xrm_resource_get_string(database.get(), "Xft.dpi", "Xft.Dpi", &found) < 0) {
    return std::nullopt;
  }
  const std::unique_ptr<char, FreeMemory> text(found);
  return text ? parseDpi(text.get()) : std::nullopt;
}

double backingScale(std::optional<int> window_scaling_factor, std::optional<double> dpi) {
  if (window_scaling_factor) {
    return *window_scaling_factor;
  }
  if (!dpi || *dpi > kLargestScale * kDpiOfScale1) {
    return 1;
  }
  return std::max(1.0, std::round(*dpi / kDpiOfScale1 * 2) / 2);
}

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
