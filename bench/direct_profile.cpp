#include "direct_profile.h"

#include <colord.h>

#include <map>
#include <stdexcept>

#include "timing.h"

namespace bench {
namespace {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

struct UnrefArray {
  void operator()(GPtrArray* array) const { g_ptr_array_unref(array); }
};
using OwnedArray = std::unique_ptr<GPtrArray, UnrefArray>;

bool connect(CdProfile* profile) {
  return cd_profile_get_connected(profile) != FALSE || cd_profile_connect_sync(profile, nullptr, nullptr) != FALSE;
}

std::string firstProfileFile(CdDevice* device) {
  const Owned<CdProfile> profile(cd_device_get_default_profile(device));
  if (!profile || !connect(profile.get())) {
    return "";
  }
  const char* const file = cd_profile_get_filename(profile.get());
  return file == nullptr ? "" : file;
}

}  // namespace

struct DirectProfile::Client {
  /// The device to ask: the one that was kept of the same path, else this one, connected. Null when it does not
  /// connect.
  CdDevice* connected(CdDevice* device) {
    const std::string path = cd_device_get_object_path(device);
    const auto found = kept.find(path);
    if (found != kept.end()) {
      return found->second.get();
    }
    if (cd_device_connect_sync(device, nullptr, nullptr) == FALSE) {
      return nullptr;
    }
    if (keeps) {
      kept.emplace(path, static_cast<CdDevice*>(g_object_ref(device)));
    }
    return device;
  }

  /// The output's device, connected; null without one.
  Owned<CdDevice> deviceOf(const std::string& output);

  Owned<CdClient> client{cd_client_new()};
  bool keeps = false;
  std::map<std::string, Owned<CdDevice>> kept;
};

DirectProfile::DirectProfile() : client_(std::make_unique<Client>()) {
  if (cd_client_connect_sync(client_->client.get(), nullptr, nullptr) == FALSE) {
    throw std::runtime_error("no colord");
  }
}

DirectProfile::~DirectProfile() = default;

void DirectProfile::keepConnected() { client_->keeps = true; }

Owned<CdDevice> DirectProfile::Client::deviceOf(const std::string& output) {
  const OwnedArray devices(cd_client_get_devices_by_kind_sync(client.get(), CD_DEVICE_KIND_DISPLAY, nullptr, nullptr));
  for (guint i = 0; devices && i < devices->len; ++i) {
    CdDevice* const device = connected(static_cast<CdDevice*>(g_ptr_array_index(devices.get(), i)));
    const char* const connector =
        device == nullptr ? nullptr : cd_device_get_metadata_item(device, CD_DEVICE_METADATA_XRANDR_NAME);
    if (connector != nullptr && connector == output) {
      return Owned<CdDevice>(static_cast<CdDevice*>(g_object_ref(device)));
    }
  }
  return nullptr;
}

std::string DirectProfile::file(const std::string& output) const {
  const Owned<CdDevice> device = client_->deviceOf(output);
  return device ? firstProfileFile(device.get()) : "";
}

bool DirectProfile::makeDefault(const std::string& output, const std::string& file) const {
  const Owned<CdProfile> profile(
      cd_client_find_profile_by_filename_sync(client_->client.get(), file.c_str(), nullptr, nullptr));
  const Owned<CdDevice> device = client_->deviceOf(output);
  if (!profile || !device || !connect(profile.get())) {
    return false;
  }
  // Refused when the device has the profile already.
  keep(cd_device_add_profile_sync(device.get(), CD_DEVICE_RELATION_HARD, profile.get(), nullptr, nullptr));
  return cd_device_make_profile_default_sync(device.get(), profile.get(), nullptr, nullptr) != FALSE;
}

}  // namespace bench
