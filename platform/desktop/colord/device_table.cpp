#include "desktop/colord/device_table.h"

#include <colord.h>

#include <algorithm>
#include <utility>

namespace platform::desktop {
namespace {

std::string lookUpText(GVariant* dictionary, const char* name) {
  const char* text = nullptr;
  return g_variant_lookup(dictionary, name, "&s", &text) != FALSE ? text : "";
}

ColordDevice describe(const std::string& path, GVariant* properties) {
  ColordDevice device;
  device.object_path = path;
  device.id = lookUpText(properties, CD_DEVICE_PROPERTY_ID);
  device.vendor = lookUpText(properties, CD_DEVICE_PROPERTY_VENDOR);
  device.model = lookUpText(properties, CD_DEVICE_PROPERTY_MODEL);
  device.serial = lookUpText(properties, CD_DEVICE_PROPERTY_SERIAL);
  device.physical =
      lookUpText(properties, CD_DEVICE_PROPERTY_MODE) == cd_device_mode_to_string(CD_DEVICE_MODE_PHYSICAL);
  g_variant_lookup(properties, CD_DEVICE_PROPERTY_MODIFIED, "t", &device.modified);
  if (const Variant metadata{
          g_variant_lookup_value(properties, CD_DEVICE_PROPERTY_METADATA, G_VARIANT_TYPE("a{ss}"))}) {
    device.connector = lookUpText(metadata.get(), CD_DEVICE_METADATA_XRANDR_NAME);
    device.edid_md5 = lookUpText(metadata.get(), CD_DEVICE_METADATA_OUTPUT_EDID_MD5);
  }
  if (const Variant profiles{
          g_variant_lookup_value(properties, CD_DEVICE_PROPERTY_PROFILES, G_VARIANT_TYPE_OBJECT_PATH_ARRAY)}) {
    for (std::string& profile : textsOf(profiles.get())) {
      device.profiles.push_back({std::move(profile), {}});
    }
  }
  return device;
}

/// The object path that a signal is about; empty without one.
std::string objectOf(GVariant* arguments) {
  const char* path = "";
  if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(o)")) != FALSE) {
    g_variant_get(arguments, "(&o)", &path);
  }
  return path;
}

/// Whether a signal announces that a device is of another kind.
bool changesKind(GVariant* arguments) {
  if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(sa{sv}as)")) == FALSE) {
    return false;
  }
  const Variant changed(g_variant_get_child_value(arguments, 1));
  return Variant(g_variant_lookup_value(changed.get(), CD_DEVICE_PROPERTY_KIND, nullptr)) != nullptr;
}

}  // namespace

void DeviceTable::clear() { *this = DeviceTable(); }

void DeviceTable::note(const std::string& path, const std::string& member, GVariant* arguments) {
  const std::string object = path == kColordPath ? objectOf(arguments) : path;
  if (member == "DeviceAdded") {
    entries_.try_emplace(object);
  }
  if (member == "DeviceAdded" || changesKind(arguments)) {
    listed_ = false;
    outdate();
  }
  if (const auto entry = entries_.find(object); entry != entries_.end()) {
    entry->second.wanted = true;
    entry->second.outdated = true;
    if (member == "DeviceRemoved") {
      entries_.erase(entry);
    }
    outdate();
  }
  if (files_.erase(object) > 0) {
    outdate();
  }
}

void DeviceTable::outdate() {
  outdated_ = true;
  current_.reset();
}

void DeviceTable::setList(const std::vector<std::string>& paths) {
  std::map<std::string, Entry> entries;
  for (const std::string& path : paths) {
    const auto known = entries_.find(path);
    entries[path] = known == entries_.end() ? Entry() : known->second;
  }
  entries_ = std::move(entries);
  listed_ = true;
  whole_ = false;
  current_.reset();
}

void DeviceTable::read(const Operation& operation, GDBusConnection* connection, const Choice& wanted) {
  outdated_ = false;
  current_.reset();
  Calls devices;
  Calls files;
  for (auto& [path, entry] : entries_) {
    entry.wanted = entry.wanted || wanted(path);
    if (entry.wanted && entry.outdated) {
      // Before the reply: a signal that arrives ahead of it has the device read another time.
      entry.outdated = false;
      devices.emplace_back(path, ColordCall::getAll(operation, connection, path, kDeviceInterface));
    } else if (entry.device) {
      askForFiles(operation, connection, *entry.device, files);
    }
  }
  for (const auto& [path, call] : devices) {
    const Variant reply = call.reply(operation);
    if (const ColordDevice* const device = takeDevice(path, reply)) {
      askForFiles(operation, connection, *device, files);
    }
  }
  for (const auto& [path, call] : files) {
    std::optional<std::string> file = call.text(operation);
    if (const auto entry = files_.find(path); entry != files_.end()) {
      entry->second = std::move(file);
    }
  }
  if (operation.expired()) {
    clear();
    return;
  }
  whole_ = std::all_of(entries_.begin(), entries_.end(), [](const auto& entry) { return entry.second.wanted; });
  if (listed_ && !outdated_) {
    current_ = latest();
  }
}

const ColordDevice* DeviceTable::takeDevice(const std::string& path, const Variant& reply) {
  const auto entry = entries_.find(path);
  if (entry == entries_.end()) {
    return nullptr;
  }
  if (!reply || g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(a{sv})")) == FALSE) {
    entries_.erase(entry);
    return nullptr;
  }
  const Variant properties(g_variant_get_child_value(reply.get(), 0));
  return &entry->second.device.emplace(describe(path, properties.get()));
}

void DeviceTable::askForFiles(const Operation& operation, GDBusConnection* connection, const ColordDevice& device,
                              Calls& calls) {
  for (const ColordProfile& profile : device.profiles) {
    // In the map from now on, for a signal to erase.
    if (files_.try_emplace(profile.object_path).second) {
      calls.emplace_back(profile.object_path, ColordCall::get(operation, connection, profile.object_path,
                                                              kProfileInterface, CD_PROFILE_PROPERTY_FILENAME));
    }
  }
}

DeviceTable::Devices DeviceTable::latest() const {
  if (current_) {
    return current_;
  }
  auto devices = std::make_shared<std::vector<ColordDevice>>();
  for (const auto& [path, entry] : entries_) {
    if (!entry.device) {
      continue;
    }
    ColordDevice& device = devices->emplace_back(*entry.device);
    std::erase_if(device.profiles, [&](ColordProfile& profile) {
      const auto file = files_.find(profile.object_path);
      const bool is_read = file != files_.end() && file->second;
      profile.filename = is_read ? *file->second : "";
      return !is_read;
    });
  }
  return devices;
}

}  // namespace platform::desktop
