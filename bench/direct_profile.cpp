#include "direct_profile.h"

#include <colord.h>

#include <stdexcept>

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

std::string firstProfileFile(CdDevice* device) {
  const Owned<CdProfile> profile(cd_device_get_default_profile(device));
  if (!profile || cd_profile_connect_sync(profile.get(), nullptr, nullptr) == FALSE) {
    return "";
  }
  const char* const file = cd_profile_get_filename(profile.get());
  return file == nullptr ? "" : file;
}

}  // namespace

struct DirectProfile::Client {
  Owned<CdClient> client{cd_client_new()};
};

DirectProfile::DirectProfile() : client_(std::make_unique<Client>()) {
  if (cd_client_connect_sync(client_->client.get(), nullptr, nullptr) == FALSE) {
    throw std::runtime_error("no colord");
  }
}

DirectProfile::~DirectProfile() = default;

std::string DirectProfile::file(const std::string& output) const {
  const OwnedArray devices(
      cd_client_get_devices_by_kind_sync(client_->client.get(), CD_DEVICE_KIND_DISPLAY, nullptr, nullptr));
  for (guint i = 0; devices && i < devices->len; ++i) {
    auto* const device = static_cast<CdDevice*>(g_ptr_array_index(devices.get(), i));
    if (cd_device_connect_sync(device, nullptr, nullptr) == FALSE) {
      continue;
    }
    const char* const connector = cd_device_get_metadata_item(device, CD_DEVICE_METADATA_XRANDR_NAME);
    if (connector != nullptr && connector == output) {
      return firstProfileFile(device);
    }
  }
  return "";
}

}  // namespace bench
