// ColordClient: what this process says to colord, through libcolord on the system bus.
//
// Every member function is for one thread, the one whose default main context the object was made for; each takes the
// operation that limits it. libcolord's own synchronous functions are not used: they run the process's default main
// context, which is not ours, and wait without limit.
//
// Devices are read once and kept until colord says that something changed. Each reading begins with one call to colord;
// its answer comes after every change that colord announced before it, so what is kept is never older than the call.
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

class ColordClient {
 public:
  using Devices = std::shared_ptr<const std::vector<ColordDevice>>;

  ColordClient() = default;
  ColordClient(const ColordClient&) = delete;
  ColordClient& operator=(const ColordClient&) = delete;

  /// The display devices that this user may see; null when colord did not answer. Starts colord where the bus can.
  Devices devices(const Operation& operation);

  /// Makes the file the default profile of the display's device, which is registered first where there is none. False
  /// when colord refused or did not answer; what was done until then stays.
  bool assign(const Operation& operation, const std::vector<Display>& displays, std::size_t display,
              const std::string& file);

  /// True once after colord has been started again: restoreProfiles() is due.
  bool takeRestart();
  /// Makes the assigned profiles known to a colord that has forgotten them; colord itself then gives them back to their
  /// devices.
  void restoreProfiles(const Operation& operation);

 private:
  bool connect(const Operation& operation);
  bool connectToBus(const Operation& operation);
  /// The process's one connection to the system bus, which libcolord uses too; null when there is none.
  static ObjectRef<GDBusConnection> sharedConnection(const Operation& operation);
  void disconnect();
  static void announced(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*, gpointer);
  static void appeared(GDBusConnection*, const gchar* name, const gchar* owner, gpointer self);
  static void vanished(GDBusConnection*, const gchar* name, gpointer self);

  Devices readOrKeep(const Operation& operation);
  /// Asks colord for its version: the least that it can be asked for, whatever the number of its devices.
  bool answers(const Operation& operation);
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
  bool restarted_ = false;      ///< since takeRestart() was asked last
  std::string restored_owner_;  ///< the colord that knows the assigned profiles
  bool changed_ = true;         ///< since `known_` was read
  Devices known_;
};

}  // namespace platform::desktop
