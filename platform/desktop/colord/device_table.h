// DeviceTable: colord's display devices as far as they have been needed, each kept until colord announces a change of
// it. A reading asks for all devices that are missing at once, and for the profiles of each when it has arrived.
//
// For the operation's thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/colord/colord_call.h"
#include "desktop/colord/colord_model.h"

namespace platform::desktop {

class DeviceTable {
 public:
  using Devices = std::shared_ptr<const std::vector<ColordDevice>>;
  using Choice = std::function<bool(const std::string& path)>;

  /// Forgets everything, as after a restart of colord.
  void clear();
  /// Takes in a signal of colord, of the object with that path.
  void note(const std::string& path, const std::string& member, GVariant* arguments);

  /// Whether the list of devices is up to date.
  bool isListed() const { return listed_; }
  /// Keeps what has been read of devices that were in the list before.
  void setList(const std::vector<std::string>& paths);

  /// Reads the listed devices of which `wanted` is true, and those that were read or have changed before, as far as
  /// they are not up to date. A device or a profile that disappears meanwhile is left out. Forgets everything when the
  /// operation expires.
  void read(const Operation& operation, GDBusConnection* connection, const Choice& wanted);

  /// The devices that have been read. Null unless all of them and the list are up to date.
  Devices current() const { return current_; }
  /// The same without that condition.
  Devices latest() const;
  /// Whether latest() has every listed device.
  bool isWhole() const { return whole_; }

 private:
  struct Entry {
    bool wanted = false;
    bool outdated = true;
    std::optional<ColordDevice> device;  ///< without the files of its profiles; nullopt before it is read
  };

  using Calls = std::vector<std::pair<std::string, ColordCall>>;  ///< by object path

  void outdate();
  /// Keeps the device that the reply describes, and returns it; null when it has disappeared.
  const ColordDevice* takeDevice(const std::string& path, const Variant& reply);
  /// Asks for the files of the profiles that are not in files_.
  void askForFiles(const Operation& operation, GDBusConnection* connection, const ColordDevice& device, Calls& calls);

  bool listed_ = false;
  std::map<std::string, Entry> entries_;                     ///< by object path
  std::map<std::string, std::optional<std::string>> files_;  ///< of the devices' profiles; nullopt when not to be read
  bool outdated_ = true;                                     ///< since the last read() began
  Devices current_;
  bool whole_ = false;
};

}  // namespace platform::desktop
