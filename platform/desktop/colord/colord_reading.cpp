#include "desktop/colord/colord_reading.h"

#include <map>
#include <set>
#include <string>

namespace platform::desktop {
namespace {

std::shared_ptr<PendingCall> startConnecting(const Operation& operation, CdDevice* device) {
  return operation.start([=](auto... rest) { cd_device_connect(device, rest...); });
}

std::shared_ptr<PendingCall> startConnecting(const Operation& operation, CdProfile* profile) {
  return operation.start([=](auto... rest) { cd_profile_connect(profile, rest...); });
}

bool finishConnecting(const Operation& operation, CdDevice* device, const std::shared_ptr<PendingCall>& call) {
  ErrorSlot error;
  return operation.wait(call) != nullptr && cd_device_connect_finish(device, call->result.get(), error.place());
}

bool finishConnecting(const Operation& operation, CdProfile* profile, const std::shared_ptr<PendingCall>& call) {
  ErrorSlot error;
  return operation.wait(call) != nullptr && cd_profile_connect_finish(profile, call->result.get(), error.place());
}

/// Leaves out the objects that cannot be connected.
template <typename Object>
std::vector<ObjectRef<Object>> connectAll(const Operation& operation, std::vector<ObjectRef<Object>> objects) {
  std::vector<std::shared_ptr<PendingCall>> calls;
  calls.reserve(objects.size());
  for (const auto& object : objects) {
    calls.push_back(startConnecting(operation, object.get()));
  }
  std::vector<ObjectRef<Object>> connected;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (finishConnecting(operation, objects[i].get(), calls[i])) {
      connected.push_back(std::move(objects[i]));
    }
  }
  return connected;
}

std::vector<ObjectRef<CdDevice>> distinctDevices(GPtrArray* list) {
  std::vector<ObjectRef<CdDevice>> devices;
  std::set<std::string> paths;
  for (guint i = 0; i < list->len; ++i) {
    auto* const device = static_cast<CdDevice*>(g_ptr_array_index(list, i));
    if (paths.insert(textOf(cd_device_get_object_path(device))).second) {
      devices.push_back(retained(device));
    }
  }
  return devices;
}

std::vector<std::string> profilePaths(CdDevice* device) {
  std::vector<std::string> paths;
  const std::unique_ptr<GPtrArray, decltype(&g_ptr_array_unref)> profiles(cd_device_get_profiles(device),
                                                                          g_ptr_array_unref);
  for (guint i = 0; profiles && i < profiles->len; ++i) {
    paths.push_back(textOf(cd_profile_get_object_path(static_cast<CdProfile*>(g_ptr_array_index(profiles.get(), i)))));
  }
  return paths;
}

/// The file of each profile that any of the devices has, by the profile's object path.
std::map<std::string, std::string> readFilenames(const Operation& operation,
                                                 const std::vector<ObjectRef<CdDevice>>& devices) {
  std::set<std::string> paths;
  for (const auto& device : devices) {
    for (std::string& path : profilePaths(device.get())) {
      paths.insert(std::move(path));
    }
  }
  std::vector<ObjectRef<CdProfile>> profiles;
  profiles.reserve(paths.size());
  for (const std::string& path : paths) {
    profiles.emplace_back(cd_profile_new_with_object_path(path.c_str()));
  }
  std::map<std::string, std::string> filenames;
  for (const auto& profile : connectAll(operation, std::move(profiles))) {
    filenames.emplace(cd_profile_get_object_path(profile.get()), textOf(cd_profile_get_filename(profile.get())));
  }
  return filenames;
}

ColordDevice describe(CdDevice* device, const std::map<std::string, std::string>& filenames) {
  ColordDevice described;
  described.object_path = textOf(cd_device_get_object_path(device));
  described.id = textOf(cd_device_get_id(device));
  described.vendor = textOf(cd_device_get_vendor(device));
  described.model = textOf(cd_device_get_model(device));
  described.serial = textOf(cd_device_get_serial(device));
  described.connector = textOf(cd_device_get_metadata_item(device, CD_DEVICE_METADATA_XRANDR_NAME));
  described.edid_md5 = textOf(cd_device_get_metadata_item(device, CD_DEVICE_METADATA_OUTPUT_EDID_MD5));
  described.physical = cd_device_get_mode(device) == CD_DEVICE_MODE_PHYSICAL;
  described.modified = cd_device_get_modified(device);
  for (const std::string& path : profilePaths(device)) {
    const auto found = filenames.find(path);
    if (found != filenames.end()) {
      described.profiles.push_back({path, found->second});
    }
  }
  return described;
}

}  // namespace

// Objects that are connected already are not connected twice: libcolord would leak the second call, and with it the
// connection to the bus, which GIO then never replaces.

bool connectDevice(const Operation& operation, CdDevice* device) {
  return cd_device_get_connected(device) || finishConnecting(operation, device, startConnecting(operation, device));
}

bool connectProfile(const Operation& operation, CdProfile* profile) {
  return cd_profile_get_connected(profile) || finishConnecting(operation, profile, startConnecting(operation, profile));
}

std::shared_ptr<const std::vector<ColordDevice>> readDevices(const Operation& operation, GPtrArray* list) {
  const auto devices = connectAll(operation, distinctDevices(list));
  const auto filenames = readFilenames(operation, devices);
  if (operation.expired()) {
    return nullptr;
  }
  auto described = std::make_shared<std::vector<ColordDevice>>();
  for (const auto& device : devices) {
    described->push_back(describe(device.get(), filenames));
  }
  return described;
}

}  // namespace platform::desktop
