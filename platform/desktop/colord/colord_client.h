// ColordClient: this process's calls to colord, through libcolord on the system bus.
//
// All member functions run on the thread whose default main context the object was made for, within the operation that
// each is given. libcolord's synchronous functions are not used: they run the process's default main context, which
// belongs to the host, and wait without a limit.
//
// Devices are cached until colord announces a change. Each reading begins with one call to colord. Its reply arrives
// after every change announced before it, so the cache is never older than the call.
#pragma once

#include <colord.h>

#include <memory>
#include <string>
#include <vector>

#include "desktop/colord/assigned_profiles.h"
#include "desktop/colord/colord_model.h"
#include "desktop/colord/glib_operation.h"
#include "desktop/model/desktop.h"

namespace platform::desktop {

/// colord's name on the system bus.
inline constexpr const char* kColordName = "org.freedesktop.ColorManager";

/// The process's connection to the system bus, shared with libcolord; null when there is none.
ObjectRef<GDBusConnection> systemBus(const Operation& operation);

class ColordClient {
 public:
  using Devices = std::shared_ptr<const std::vector<ColordDevice>>;

  ColordClient() = default;
  ColordClient(const ColordClient&) = delete;
  ColordClient& operator=(const ColordClient&) = delete;

  /// The display devices that this user may see; null when colord does not reply. The bus starts colord if it can.
  Devices devices(const Operation& operation);

  /// Makes the file the default profile of the display's device, and registers the device first if it is unknown. False
  /// when colord refuses or does not reply; a part of the work may then have been done.
  bool assign(const Operation& operation, const std::vector<Display>& displays, std::size_t display,
              const std::string& file);

  /// True once after each restart of colord: restoreProfiles() is due.
  bool takeRestart();
  /// Registers the assigned profiles with a restarted colord, which then returns them to their devices.
  void restoreProfiles(const Operation& operation);

 private:
  bool connect(const Operation& operation);
  bool connectToBus(const Operation& operation);
  void disconnect();
  static void announced(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*, gpointer);
  static void appeared(GDBusConnection*, const gchar* name, const gchar* owner, gpointer self);
  static void vanished(GDBusConnection*, const gchar* name, gpointer self);

  Devices read(const Operation& operation);
  /// Asks for colord's version, a call whose cost does not depend on the number of devices.
  bool ping(const Operation& operation);
  std::shared_ptr<GPtrArray> listDevices(const Operation& operation);
  ObjectRef<CdDevice> registerDevice(const Operation& operation, const ColordRegistration& registration);
  ObjectRef<CdProfile> findProfile(const Operation& operation, const std::string& file);
  ObjectRef<CdProfile> createProfile(const Operation& operation, const AssignedProfile& profile);
  ObjectRef<CdProfile> registerProfile(const Operation& operation, const std::string& file);

  ObjectRef<GDBusConnection> connection_;
  guint name_watch_ = 0;
  guint signal_watch_ = 0;
  ObjectRef<CdClient> client_;
  bool owner_reported_ = false;
  std::string owner_;           ///< colord's unique name on the bus; empty while it does not run
  bool restarted_ = false;      ///< since the last takeRestart()
  std::string restored_owner_;  ///< the unique name of the colord with which the assigned profiles are registered
  bool changed_ = true;         ///< since `known_` was read
  Devices known_;
};

}  // namespace platform::desktop
