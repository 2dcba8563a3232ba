#include "desktop/colord/colord_client.h"

#include <colord.h>
#include <fcntl.h>

#include <utility>

#include "desktop/colord/colord_matching.h"

namespace platform::desktop {
namespace {

constexpr const char* kDisplayKind = "display";
constexpr const char* kDiskScope = "disk";
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

bool allPaths(const std::string& /*path*/) { return true; }

/// The text with U+FFFD for what is not UTF-8, which D-Bus does not carry.
std::string validText(const std::string& text) {
  const std::unique_ptr<char, decltype(&g_free)> valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())),
                                                       g_free);
  return valid.get();
}

/// A dictionary of texts, floating.
GVariant* dictionary(const std::vector<std::pair<std::string, std::string>>& entries) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
  for (const auto& [name, value] : entries) {
    g_variant_builder_add(&builder, "{ss}", name.c_str(), validText(value).c_str());
  }
  return g_variant_builder_end(&builder);
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
  if (connection_ && g_dbus_connection_is_closed(connection_.get()) != FALSE) {
    disconnect();
  }
  if (connection_) {
    return true;
  }
  ObjectRef<GDBusConnection> connection = systemBus(operation);
  if (!connection || g_dbus_connection_is_closed(connection.get()) != FALSE) {
    return false;
  }
  connection_ = std::move(connection);
  signal_watch_ = g_dbus_connection_signal_subscribe(connection_.get(), kColordName, nullptr, nullptr, nullptr, nullptr,
                                                     G_DBUS_SIGNAL_FLAGS_NONE, announced, this, nullptr);
  return true;
}

void ColordClient::disconnect() {
  if (name_watch_ != 0) {
    g_bus_unwatch_name(std::exchange(name_watch_, 0));
  }
  g_dbus_connection_signal_unsubscribe(connection_.get(), signal_watch_);
  connection_.reset();
  owner_.clear();
  owner_reported_ = false;
  restored_owner_.clear();
  table_.clear();
  // Pending events may still hold the closed connection, which GIO returns while anything does.
  while (g_main_context_iteration(g_main_context_get_thread_default(), FALSE)) {
  }
}

void ColordClient::announced(GDBusConnection*, const gchar*, const gchar* path, const gchar*, const gchar* member,
                             GVariant* arguments, gpointer self) {
  static_cast<ColordClient*>(self)->table_.note(path, member, arguments);
}

void ColordClient::appeared(GDBusConnection*, const gchar*, const gchar* owner, gpointer data) {
  auto* const self = static_cast<ColordClient*>(data);
  self->restarted_ = self->owner_reported_;
  self->owner_reported_ = true;
  self->owner_ = owner;
  self->table_.clear();
}

void ColordClient::vanished(GDBusConnection*, const gchar*, gpointer data) {
  auto* const self = static_cast<ColordClient*>(data);
  self->owner_reported_ = true;
  self->owner_.clear();
  self->table_.clear();
}

bool ColordClient::takeRestart() { return std::exchange(restarted_, false); }

void ColordClient::restoreProfiles(const Operation& operation) {
  if (connect(operation) && owner_ != restored_owner_) {
    restore(operation, assignedProfiles());
  }
}

void ColordClient::restore(const Operation& operation, const std::vector<AssignedProfile>& profiles) {
  const std::string owner = owner_;
  std::vector<ColordCall> searches;
  searches.reserve(profiles.size());
  for (const AssignedProfile& profile : profiles) {
    searches.push_back(call(operation, "FindProfileByFilename", g_variant_new("(s)", profile.file.c_str())));
  }
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    if (!searches[i].text(operation)) {
      createProfile(operation, profiles[i]);
    }
    if (operation.expired()) {
      return;
    }
  }
  restored_owner_ = owner;
}

ColordClient::Devices ColordClient::allDevices(const Operation& operation) {
  return readTwice(operation, allPaths, [](const std::vector<ColordDevice>&) { return true; });
}

ColordClient::Devices ColordClient::devicesOf(const Operation& operation, const std::vector<Display>& displays) {
  return readTwice(operation, namedAfter(displays),
                   [&](const std::vector<ColordDevice>& devices) { return haveOwnDevices(displays, devices); });
}

ColordClient::Devices ColordClient::readTwice(const Operation& operation, const DeviceTable::Choice& first,
                                              const Condition& enough) {
  Devices devices = read(operation, first, enough);
  return devices || operation.expired() ? devices : read(operation, first, enough);
}

ColordClient::Devices ColordClient::read(const Operation& operation, const DeviceTable::Choice& first,
                                         const Condition& enough) {
  if (!connect(operation)) {
    return nullptr;
  }
  std::optional<ColordCall> ping;
  if (table_.isListed()) {
    // The cost of this call does not depend on the number of devices.
    ping = ColordCall::get(operation, connection_.get(), kColordPath, kColordName, "DaemonVersion");
  }
  if (table_.current() && !std::exchange(ping, std::nullopt)->reply(operation)) {
    return nullptr;
  }
  for (int reading = 0; reading == 0 || (!table_.current() && reading < kMostReadings); ++reading) {
    if (!table_.isListed() && !list(operation)) {
      return nullptr;
    }
    if (!table_.current()) {
      table_.read(operation, connection_.get(), first);
    }
    if (!table_.isWhole() && !enough(*table_.latest())) {
      table_.read(operation, connection_.get(), allPaths);
    }
  }
  return operation.expired() || (ping && !ping->reply(operation)) ? nullptr : table_.latest();
}

bool ColordClient::list(const Operation& operation) {
  const ColordCall listing = call(operation, "GetDevicesByKind", g_variant_new("(s)", kDisplayKind));
  // What does not depend on the list is done while colord works on it.
  if (name_watch_ == 0) {
    name_watch_ = g_bus_watch_name_on_connection(connection_.get(), kColordName, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                 appeared, vanished, this, nullptr);
  }
  const bool is_restored = owner_reported_ && owner_ == restored_owner_;
  const auto profiles = is_restored ? std::nullopt : std::optional(assignedProfiles());
  const auto paths = listing.paths(operation);
  if (!paths || !operation.waitUntil([this] { return owner_reported_; })) {
    return false;
  }
  table_.setList(*paths);
  if (owner_ != restored_owner_) {
    restore(operation, profiles ? *profiles : assignedProfiles());
  }
  return true;
}

ColordCall ColordClient::call(const Operation& operation, const char* method, GVariant* arguments, GUnixFDList* files) {
  return {operation, connection_.get(), kColordPath, kColordName, method, arguments, files};
}

std::optional<std::string> ColordClient::registerDevice(const Operation& operation,
                                                        const ColordRegistration& registration) {
  const std::string id = validText(registration.id);
  const auto device = call(operation, "CreateDevice",
                           g_variant_new("(ss@a{ss})", id.c_str(), kDiskScope, dictionary(registration.properties)))
                          .text(operation);
  if (!device) {
    // Perhaps a session daemon has registered it meanwhile.
    return call(operation, "FindDeviceById", g_variant_new("(s)", id.c_str())).text(operation);
  }
  // colord's database stores every property that a device is created with except the kind. Without the kind, a
  // restarted colord does not list the device among the displays.
  const ColordCall kind(operation, connection_.get(), *device, kDeviceInterface, "SetProperty",
                        g_variant_new("(ss)", CD_DEVICE_PROPERTY_KIND, kDisplayKind));
  return kind.reply(operation) ? device : std::nullopt;
}

std::optional<std::string> ColordClient::createProfile(const Operation& operation, const AssignedProfile& profile) {
  const int file = open(profile.file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    return std::nullopt;
  }
  // The descriptor is passed, so colord needs no permission to read the file. The list closes it.
  const ObjectRef<GUnixFDList> files(g_unix_fd_list_new_from_array(&file, 1));
  // Lasts until colord stops, because colord does not store profiles on disk.
  return call(operation, "CreateProfileWithFd",
              g_variant_new("(ssh@a{ss})", profile.id.c_str(), cd_object_scope_to_string(CD_OBJECT_SCOPE_NORMAL), 0,
                            dictionary({{CD_PROFILE_PROPERTY_FILENAME, profile.file}})),
              files.get())
      .text(operation);
}

std::optional<std::string> ColordClient::registerProfile(const Operation& operation, const std::string& file) {
  std::string id = profileIdFor(file);
  auto profile = call(operation, "FindProfileByFilename", g_variant_new("(s)", file.c_str())).text(operation);
  if (!profile) {
    profile = createProfile(operation, {id, file});
  } else if (!isInColordDirectory(file)) {
    // Another program may have registered it.
    id = ColordCall::get(operation, connection_.get(), *profile, kProfileInterface, CD_PROFILE_PROPERTY_ID)
             .text(operation)
             .value_or("");
  }
  if (profile && !isInColordDirectory(file) && !id.empty()) {
    rememberAssignedProfile({id, file});
  }
  return profile;
}

bool ColordClient::makeDefault(const Operation& operation, const std::string& device, const std::string& profile) {
  GDBusConnection* const bus = connection_.get();
  // Fails when the device has the profile already.
  const ColordCall add(operation, bus, device, kDeviceInterface, "AddProfile",
                       g_variant_new("(so)", cd_device_relation_to_string(CD_DEVICE_RELATION_HARD), profile.c_str()));
  const ColordCall make(operation, bus, device, kDeviceInterface, "MakeProfileDefault",
                        g_variant_new("(o)", profile.c_str()));
  const auto check = ColordCall::get(operation, bus, device, kDeviceInterface, CD_DEVICE_PROPERTY_PROFILES);
  const auto profiles = check.paths(operation);
  return make.reply(operation) && profiles && !profiles->empty() && profiles->front() == profile;
}

bool ColordClient::assign(const Operation& operation, const std::vector<Display>& displays, std::size_t display,
                          const std::string& file) {
  const Devices known = g_utf8_validate(file.c_str(), -1, nullptr) != FALSE ? devicesOf(operation, displays) : nullptr;
  if (!known) {
    return false;
  }
  const auto profile = registerProfile(operation, file);
  if (!profile) {
    return false;
  }
  const auto match = matchDevices(displays, *known)[display];
  const auto device = match ? std::optional((*known)[*match].object_path)
                            : registerDevice(operation, registrationFor(displays, display, *known));
  return device && makeDefault(operation, *device, *profile);
}

}  // namespace platform::desktop
