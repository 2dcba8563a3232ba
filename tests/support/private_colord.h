// A real colord of the test's own, on a real system bus of the test's own.
//
// The bus is a dbus-daemon on a socket in a temporary directory, named to this process and its children by
// DBUS_SYSTEM_BUS_ADDRESS. colord keeps its state in a directory of the test's instead of /var/lib/colord and loads no
// plugins, which would start processes of their own to look for scanners; colord_redirect.cpp, preloaded into it, sees
// to both. So tests run at the same time, need no privilege and do not touch the computer's own colord. Bus and colord
// die with the test.
//
// There is no polkit on the bus. None is needed: colord lets root and the user that it runs as itself do everything
// without asking, and it runs as the user of the test, root or not. So what polkit would deny to a user is not tested
// here.
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
  /// Starts the bus and colord, and waits until colord answers. Throws std::runtime_error with what they printed as
  /// soon as one of them ends, and after 30 seconds when colord does not answer.
  PrivateColord();
  ~PrivateColord();
  PrivateColord(const PrivateColord&) = delete;
  PrivateColord& operator=(const PrivateColord&) = delete;

  /// The test's temporary directory; gone afterwards.
  std::filesystem::path directory() const { return directory_.path(); }
  /// A path of a copy, in the temporary directory, of one of colord's profiles ("AdobeRGB1998.icc").
  std::filesystem::path copyOfProfile(const std::string& colord_profile, const std::string& name) const;

  /// Starts colord again after stop(), and waits until it answers.
  void start();
  void stop();
  void restart();
  /// colord stays on the bus and answers nothing until resume().
  void suspend() { colord_->signal(SIGSTOP); }
  void resume() { colord_->signal(SIGCONT); }
  /// The bus goes away, and everything that was on it loses its connection.
  void stopBus();
  void startBus();
  /// The bus stays, and passes nothing on until resumeBus().
  void suspendBus() { bus_->signal(SIGSTOP); }
  void resumeBus() { bus_->signal(SIGCONT); }

  /// Registers a display device as a session daemon does, until colord stops. Returns its object path. `metadata` are
  /// colord's names and values: XRANDR_name, OutputEdidMd5, Model, ...
  std::string registerDevice(const std::string& id, const std::map<std::string, std::string>& metadata,
                             const std::string& kind = "display");
  void deleteDevice(const std::string& object_path);

  /// What colormgr prints with these arguments. Throws std::runtime_error with its messages when it fails.
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
