// ColordClient: this process's calls to colord, on the system bus.
//
// All member functions run on the thread whose default main context the object was made for, within the operation that
// each is given. libcolord's synchronous functions are not used: they run the process's default main context, which
// belongs to the host, and wait without a limit.
//
// Devices are cached until colord announces a change of them. Each reading sends at least one call to colord. Its reply
// arrives after every change announced before it, so the cache is never older than the call.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/colord/assigned_profiles.h"
#include "desktop/colord/colord_model.h"
#include "desktop/colord/device_table.h"
#include "desktop/colord/glib_operation.h"
#include "desktop/model/desktop.h"

namespace platform::desktop {

/// The process's connection to the system bus, which GIO shares; null when there is none.
ObjectRef<GDBusConnection> systemBus(const Operation& operation);

class ColordClient {
 public:
  using Devices = DeviceTable::Devices;

  ColordClient() = default;
  ColordClient(const ColordClient&) = delete;
  ColordClient& operator=(const ColordClient&) = delete;

  /// The display devices that this user may see; null when colord does not reply. The bus starts colord if it can.
  Devices allDevices(const Operation& operation);
  /// At least those that the displays have. Devices of other displays are read only when a display has none that is
  /// named after it, as session daemons name devices.
  Devices devicesOf(const Operation& operation, const std::vector<Display>& displays);

  /// Makes the file the default profile of the display's device, and registers the device first if it is unknown. False
  /// when the path is not UTF-8, and when colord refuses or does not reply; a part of the work may then have been done.
  bool assign(const Operation& operation, const std::vector<Display>& displays, std::size_t display,
              const std::string& file);

  /// Connects to the system bus, unless connected; what needs the connection does so itself too. False without a bus.
  bool connect(const Operation& operation);
  /// True once after each restart of colord: restoreProfiles() is due.
  bool takeRestart();
  /// Registers the assigned profiles with a restarted colord, which then returns them to their devices.
  void restoreProfiles(const Operation& operation);

 private:
  void disconnect();
  static void announced(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*, gpointer);
  static void appeared(GDBusConnection*, const gchar* name, const gchar* owner, gpointer self);
  static void vanished(GDBusConnection*, const gchar* name, gpointer self);

  /// Whether these devices are enough.
  using Condition = std::function<bool(const std::vector<ColordDevice>&)>;

  /// Tries a second time after a failure: the first call after the bus or colord went away fails, and the second one
  /// connects again.
  Devices readTwice(const Operation& operation, const DeviceTable::Choice& first, const Condition& enough);
  /// Reads the devices of `first`, and all if those are not enough.
  Devices read(const Operation& operation, const DeviceTable::Choice& first, const Condition& enough);
  /// Restores the profiles too, if this colord does not have them yet.
  bool list(const Operation& operation);
  void restore(const Operation& operation, const std::vector<AssignedProfile>& profiles);
  ColordCall call(const Operation& operation, const char* method, GVariant* arguments, GUnixFDList* files = nullptr);

  // An object path, or nullopt when colord refuses or does not reply.
  std::optional<std::string> registerDevice(const Operation& operation, const ColordRegistration& registration);
  std::optional<std::string> createProfile(const Operation& operation, const AssignedProfile& profile);
  std::optional<std::string> registerProfile(const Operation& operation, const std::string& file);
  bool makeDefault(const Operation& operation, const std::string& device, const std::string& profile);

  ObjectRef<GDBusConnection> connection_;
  guint name_watch_ = 0;  ///< 0 before the first list()
  guint signal_watch_ = 0;
  bool owner_reported_ = false;
  std::string owner_;           ///< colord's unique name on the bus; empty while it does not run
  bool restarted_ = false;      ///< since the last takeRestart()
  std::string restored_owner_;  ///< the unique name of the colord with which the assigned profiles are registered
  DeviceTable table_;
};

}  // namespace platform::desktop
