// A private colord on a private system bus, both real.
//
// The bus is a dbus-daemon on a socket in a temporary directory, named to this process and its children by
// DBUS_SYSTEM_BUS_ADDRESS. colord_redirect.cpp, preloaded into colord, moves its state from /var/lib/colord to the
// temporary directory and hides its plugins, which would start processes that look for scanners. So tests run in
// parallel, need no privilege and do not touch the computer's colord. Bus and colord end with the test.
//
// The bus has no polkit. colord permits everything to root and to the user that it runs as, which is the test's; so
// what polkit denies to a user is not tested.
//
// A test creates the rig before anything in the process uses the system bus.
#pragma once

#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"

struct _GDBusConnection;

namespace support {

class PrivateColord {
 public:
  /// Starts the bus and colord, and waits for colord's first reply. Throws std::runtime_error with their output when
  /// one of them ends, and after 30 seconds without a reply.
  PrivateColord();
  ~PrivateColord();
  PrivateColord(const PrivateColord&) = delete;
  PrivateColord& operator=(const PrivateColord&) = delete;

  /// The test's temporary directory; gone afterwards.
  std::filesystem::path directory() const { return directory_.path(); }
  /// A path of a copy, in the temporary directory, of one of colord's profiles ("AdobeRGB1998.icc").
  std::filesystem::path copyOfProfile(const std::string& colord_profile, const std::string& name) const;

  /// Starts colord after stop(), and waits for its first reply.
  void start();
  void stop();
  void restart();
  /// colord stays on the bus without replying until resume().
  void suspend() { colord_->signal(SIGSTOP); }
  void resume() { colord_->signal(SIGCONT); }
  /// Ends the bus and with it every connection.
  void stopBus();
  void startBus();
  /// The bus forwards nothing until resumeBus().
  void suspendBus() { bus_->signal(SIGSTOP); }
  void resumeBus() { bus_->signal(SIGCONT); }

  /// Registers a display device as a session daemon does, until colord stops. Returns its object path. `metadata` are
  /// colord's names and values: XRANDR_name, OutputEdidMd5, Model, ...
  std::string registerDevice(const std::string& id, const std::map<std::string, std::string>& metadata,
                             const std::string& kind = "display");
  void deleteDevice(const std::string& object_path);

  /// colormgr's output with these arguments. Throws std::runtime_error with its messages when it fails.
  std::string colormgr(const std::vector<std::string>& arguments) const;
  /// The file of the device's default profile as colormgr reports it; "" when it has none.
  std::string defaultProfileFile(const std::string& device_id) const;
  /// Every value of one field, such as "Device ID", in what colormgr printed.
  static std::vector<std::string> fields(const std::string& output, const std::string& name);

 private:
  void connect();
  bool colordHasName() const;

  TemporaryFolder directory_;
  std::string address_;
  std::unique_ptr<ChildProcess> bus_;
  std::unique_ptr<ChildProcess> colord_;
  std::shared_ptr<_GDBusConnection> connection_;
};

}  // namespace support
