#include "desktop/colord/colord_client.h"

#include <set>

#include "desktop/colord/colord_matching.h"
#include "desktop/colord/colord_reading.h"

namespace platform::desktop {
namespace {

constexpr const char* kColordPath = "/org/freedesktop/ColorManager";
/// A reading during which something changes is repeated, up to this number of readings; the last one is returned.
constexpr int kMostReadings = 3;
constexpr std::chrono::milliseconds kRetryPause{2};

/// Where colord finds profiles by itself.
constexpr const char* kColordDirectories[] = {"/usr/share/color/icc/", "/usr/local/share/color/icc/",
                                              "/var/lib/color/icc/", "/var/lib/colord/icc/"};

bool isInColordDirectory(const std::string& file) {
  for (const char* directory : kColordDirectories) {
    if (file.starts_with(directory)) {
      return true;
    }
  }
  return false;
}

/// Depends on the path alone, not on the contents.
std::string profileIdFor(const std::string& file) {
  const std::unique_ptr<char, decltype(&g_free)> digits(g_compute_checksum_for_string(G_CHECKSUM_MD5, file.c_str(), -1),
                                                        g_free);
  return std::string("file-") + digits.get();
}

std::unique_ptr<GHashTable, decltype(&g_hash_table_unref)> newTable() {
  return {g_hash_table_new_full(g_str_hash, g_str_equal, g_free, g_free), g_hash_table_unref};
}

void put(GHashTable* table, const std::string& key, const std::string& value) {
  g_hash_table_insert(table, g_strdup(key.c_str()), g_strdup(value.c_str()));
}

bool hasDefault(const Operation& operation, const char* device_path, const std::string& profile_path) {
  const ObjectRef<CdDevice> device(cd_device_new_with_object_path(device_path));
  if (!connectDevice(operation, device.get())) {
    return false;
  }
  const ObjectRef<CdProfile> profile(cd_device_get_default_profile(device.get()));
  return profile && profile_path == cd_profile_get_object_path(profile.get());
}

/// Sets the kind of a new device, which colord's database would otherwise lose: it stores every other property that a
/// device is created with. Without the kind, a restarted colord does not list the device among the displays.
bool persistKind(const Operation& operation, CdDevice* device) {
  const char* const display = cd_device_kind_to_string(CD_DEVICE_KIND_DISPLAY);
  const auto set =
      operation.start([&](auto... rest) { cd_device_set_property(device, CD_DEVICE_PROPERTY_KIND, display, rest...); });
  ErrorSlot error;
  return operation.wait(set) != nullptr && cd_device_set_property_finish(device, set->result.get(), error.place());
}

bool makeDefault(const Operation& operation, CdDevice* device, CdProfile* profile) {
  ErrorSlot error;
  const auto added =
      operation.start([&](auto... rest) { cd_device_add_profile(device, CD_DEVICE_RELATION_HARD, profile, rest...); });
  if (operation.wait(added) == nullptr || (!cd_device_add_profile_finish(device, added->result.get(), error.place()) &&
                                           !error.is(CD_DEVICE_ERROR, CD_DEVICE_ERROR_PROFILE_ALREADY_ADDED))) {
    return false;
  }
  const auto made = operation.start([&](auto... rest) { cd_device_make_profile_default(device, profile, rest...); });
  return operation.wait(made) != nullptr &&
         cd_device_make_profile_default_finish(device, made->result.get(), error.place()) &&
         hasDefault(operation, cd_device_get_object_path(device), cd_profile_get_object_path(profile));
}

}  // namespace

ObjectRef<GDBusConnection> systemBus(const Operation& operation) {
  for (;;) {
    const auto got = operation.start([](auto... rest) { g_bus_get(G_BUS_TYPE_SYSTEM, rest...); });
    ErrorSlot error;
    if (operation.wait(got) == nullptr) {
      return nullptr;
    }
    ObjectRef<GDBusConnection> connection(g_bus_get_finish(got->result.get(), error.place()));
    if (connection) {
      // GIO's default ends the process when the bus goes away.
      g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    }
    // GIO returns the same connection while anything holds it, even a failed one. This operation has not been
    // cancelled, so the error belongs to an earlier one, whose thread still holds the connection.
    if (connection || !error.is(G_IO_ERROR, G_IO_ERROR_CANCELLED) || !operation.pause(kRetryPause)) {
      return connection;
    }
  }
}

bool ColordClient::connect(const Operation& operation) {
  if (connection_ && g_dbus_connection_is_closed(connection_.get())) {
    disconnect();
  }
  if (!connection_ && !connectToBus(operation)) {
    return false;
  }
  if (client_) {
    return true;
  }
  ObjectRef<CdClient> client(cd_client_new());
  const auto connected = operation.start([&](auto... rest) { cd_client_connect(client.get(), rest...); });
  ErrorSlot error;
  if (operation.wait(connected) == nullptr ||
      !cd_client_connect_finish(client.get(), connected->result.get(), error.place())) {
    return false;
  }
  client_ = std::move(client);
  return true;
}

bool ColordClient::connectToBus(const Operation& operation) {
  ObjectRef<GDBusConnection> connection = systemBus(operation);
  if (!connection || g_dbus_connection_is_closed(connection.get())) {
    return false;
  }
  connection_ = std::move(connection);
  signal_watch_ = g_dbus_connection_signal_subscribe(connection_.get(), kColordName, nullptr, nullptr, nullptr, nullptr,
                                                     G_DBUS_SIGNAL_FLAGS_NONE, announced, this, nullptr);
  name_watch_ = g_bus_watch_name_on_connection(connection_.get(), kColordName, G_BUS_NAME_WATCHER_FLAGS_NONE, appeared,
                                               vanished, this, nullptr);
  return operation.waitUntil([this] { return owner_reported_; });
}

void ColordClient::disconnect() {
  g_bus_unwatch_name(name_watch_);
  g_dbus_connection_signal_unsubscribe(connection_.get(), signal_watch_);
  client_.reset();
  connection_.reset();
  owner_.clear();
  owner_reported_ = false;
  restored_owner_.clear();
  changed_ = true;
  // Pending events may still hold the closed connection, which GIO returns while anything does.
  while (g_main_context_iteration(g_main_context_get_thread_default(), FALSE)) {
  }
}

void ColordClient::announced(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
                             gpointer self) {
  static_cast<ColordClient*>(self)->changed_ = true;
}

void ColordClient::appeared(GDBusConnection*, const gchar*, const gchar* owner, gpointer data) {
  auto* const self = static_cast<ColordClient*>(data);
  self->restarted_ = self->owner_reported_;
  self->owner_reported_ = true;
  self->owner_ = owner;
  self->changed_ = true;
}

void ColordClient::vanished(GDBusConnection*, const gchar*, gpointer data) {
  auto* const self = static_cast<ColordClient*>(data);
  self->owner_reported_ = true;
  self->owner_.clear();
  self->changed_ = true;
}

bool ColordClient::takeRestart() { return std::exchange(restarted_, false); }

void ColordClient::restoreProfiles(const Operation& operation) {
  if (!connect(operation) || owner_ == restored_owner_) {
    return;
  }
  const std::string owner = owner_;
  for (const AssignedProfile& profile : assignedProfiles()) {
    if (!findProfile(operation, profile.file)) {
      createProfile(operation, profile);
    }
    if (operation.expired()) {
      return;
    }
  }
  restored_owner_ = owner;
}

ColordClient::Devices ColordClient::devices(const Operation& operation) {
  Devices devices = read(operation);
  if (!devices && !operation.expired()) {
    // The first call after the bus or colord went away fails, and the second one connects again.
    devices = read(operation);
  }
  return devices;
}

std::shared_ptr<GPtrArray> ColordClient::listDevices(const Operation& operation) {
  const auto listed = operation.start(
      [&](auto... rest) { cd_client_get_devices_by_kind(client_.get(), CD_DEVICE_KIND_DISPLAY, rest...); });
  ErrorSlot error;
  GPtrArray* const devices =
      operation.wait(listed) == nullptr
          ? nullptr
          : cd_client_get_devices_by_kind_finish(client_.get(), listed->result.get(), error.place());
  return devices == nullptr ? nullptr : std::shared_ptr<GPtrArray>(devices, g_ptr_array_unref);
}

bool ColordClient::ping(const Operation& operation) {
  const auto asked = operation.start([&](auto... rest) {
    g_dbus_connection_call(connection_.get(), kColordName, kColordPath, "org.freedesktop.DBus.Properties", "Get",
                           g_variant_new("(ss)", kColordName, "DaemonVersion"), nullptr, G_DBUS_CALL_FLAGS_NONE,
                           -1 /* the operation limits it */, rest...);
  });
  if (operation.wait(asked) == nullptr) {
    return false;
  }
  ErrorSlot error;
  GVariant* const version = g_dbus_connection_call_finish(connection_.get(), asked->result.get(), error.place());
  if (version == nullptr) {
    return false;
  }
  g_variant_unref(version);
  return true;
}

ColordClient::Devices ColordClient::read(const Operation& operation) {
  if (!connect(operation)) {
    return nullptr;
  }
  if (known_ && !changed_ && owner_ == restored_owner_) {
    if (!ping(operation)) {
      return nullptr;
    }
    if (!changed_) {
      return known_;
    }
  }
  std::shared_ptr<GPtrArray> list = listDevices(operation);
  if (list && owner_ != restored_owner_) {
    restoreProfiles(operation);
    list = listDevices(operation);
  }
  for (int reading = 0; list && (changed_ || !known_); ++reading) {
    changed_ = false;
    known_ = readDevices(operation, list.get());
    if (!known_ || reading + 1 == kMostReadings) {
      return std::exchange(known_, nullptr);
    }
    list = listDevices(operation);
  }
  return list ? known_ : nullptr;
}

ObjectRef<CdDevice> ColordClient::registerDevice(const Operation& operation, const ColordRegistration& registration) {
  const auto properties = newTable();
  for (const auto& [name, value] : registration.properties) {
    put(properties.get(), name, value);
  }
  const char* const id = registration.id.c_str();
  const auto created = operation.start([&](auto... rest) {
    cd_client_create_device(client_.get(), id, CD_OBJECT_SCOPE_DISK, properties.get(), rest...);
  });
  ErrorSlot error;
  if (operation.wait(created) == nullptr) {
    return nullptr;
  }
  ObjectRef<CdDevice> device(cd_client_create_device_finish(client_.get(), created->result.get(), error.place()));
  if (device) {
    return connectDevice(operation, device.get()) && persistKind(operation, device.get()) ? std::move(device) : nullptr;
  }
  if (!error.is(CD_CLIENT_ERROR, CD_CLIENT_ERROR_ALREADY_EXISTS)) {
    return nullptr;
  }
  // A session daemon has registered the device meanwhile.
  const auto found = operation.start([&](auto... rest) { cd_client_find_device(client_.get(), id, rest...); });
  if (operation.wait(found) == nullptr) {
    return nullptr;
  }
  return ObjectRef<CdDevice>(cd_client_find_device_finish(client_.get(), found->result.get(), error.place()));
}

ObjectRef<CdProfile> ColordClient::findProfile(const Operation& operation, const std::string& file) {
  const auto found =
      operation.start([&](auto... rest) { cd_client_find_profile_by_filename(client_.get(), file.c_str(), rest...); });
  if (operation.wait(found) == nullptr) {
    return nullptr;
  }
  ErrorSlot error;
  return ObjectRef<CdProfile>(
      cd_client_find_profile_by_filename_finish(client_.get(), found->result.get(), error.place()));
}

ObjectRef<CdProfile> ColordClient::createProfile(const Operation& operation, const AssignedProfile& profile) {
  const auto properties = newTable();
  // libcolord opens the file and passes the descriptor, so colord needs no permission to read it.
  put(properties.get(), CD_PROFILE_PROPERTY_FILENAME, profile.file);
  // Lasts until colord stops, because colord does not store profiles on disk.
  const auto created = operation.start([&](auto... rest) {
    cd_client_create_profile(client_.get(), profile.id.c_str(), CD_OBJECT_SCOPE_NORMAL, properties.get(), rest...);
  });
  if (operation.wait(created) == nullptr) {
    return nullptr;
  }
  ErrorSlot error;
  return ObjectRef<CdProfile>(cd_client_create_profile_finish(client_.get(), created->result.get(), error.place()));
}

ObjectRef<CdProfile> ColordClient::registerProfile(const Operation& operation, const std::string& file) {
  ObjectRef<CdProfile> profile = findProfile(operation, file);
  if (!profile) {
    profile = createProfile(operation, {profileIdFor(file), file});
  }
  if (!profile || !connectProfile(operation, profile.get())) {
    return nullptr;
  }
  if (!isInColordDirectory(file) && cd_profile_get_id(profile.get()) != nullptr) {
    rememberAssignedProfile({cd_profile_get_id(profile.get()), file});
  }
  return profile;
}

bool ColordClient::assign(const Operation& operation, const std::vector<Display>& displays, std::size_t display,
                          const std::string& file) {
  const Devices known = devices(operation);
  if (!known) {
    return false;
  }
  const ObjectRef<CdProfile> profile = registerProfile(operation, file);
  if (!profile) {
    return false;
  }
  const auto match = matchDevices(displays, *known)[display];
  const ObjectRef<CdDevice> device =
      match ? ObjectRef<CdDevice>(cd_device_new_with_object_path((*known)[*match].object_path.c_str()))
            : registerDevice(operation, registrationFor(displays, display, *known));
  return device && connectDevice(operation, device.get()) && makeDefault(operation, device.get(), profile.get());
}

}  // namespace platform::desktop
