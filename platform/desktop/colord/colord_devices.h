// The live desktop's device profiles: colord's display devices, each matched to a display of the arrangement.
//
// Each profile of a device is one device profile; the first is the default and the current one. A display without a
// device in colord has none, and a device whose monitor is not in the arrangement gives none.
//
// One thread of the process talks to colord, so a colord that hangs or dies delays a caller at most by the limits
// below. It connects on first use, and again after a loss.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// How long visit() waits for colord before it visits the first device profile; then it visits none.
inline constexpr std::chrono::milliseconds kDeviceWalkLimit{5000};
/// How long assign() takes at most.
inline constexpr std::chrono::milliseconds kAssignmentLimit{5000};

/// Connects to the system bus, as the first visit() would, and does not wait for it. Any thread may call.
PLATFORM_API void prepareColord();

/// Any thread may call any function, several at once.
class PLATFORM_API ColordDevices {
 public:
  /// `arrangement` is called once in each visit() and assign(), on the caller's thread.
  explicit ColordDevices(ArrangementSource arrangement);

  /// Visits the device profiles display by display, in the arrangement's order. A description is the device's model,
  /// else its vendor, else the connector; a profile without a file has no path.
  void visit(const DeviceProfileVisitor& visit) const;

  /// Makes the file the default profile of the display with this UUID. The file may be anywhere, and must be a readable
  /// display profile. colord's polkit rules decide who may change devices: by default root, and the user of the active
  /// session.
  ///
  /// A display that no session daemon has registered is registered first, with the properties that a daemon would give,
  /// and stored in colord's database. The assignment lasts: colord stores it, and a file outside colord's directories
  /// is registered with a restarted colord, at once by a process that has used colord, else by the next one that does.
  /// True when colord reports the file as the device's default afterwards.
  bool assign(const Uuid& device, const std::string& profile_path) const;

 private:
  ArrangementSource arrangement_;
};

}  // namespace platform::desktop
