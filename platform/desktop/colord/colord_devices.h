// The live desktop's device profiles: colord's display devices, each matched to a display of the arrangement.
//
// Every profile of a device is an entry; its first one is the default and the one in use. A display that has no device
// in colord has no entries, and a device whose monitor is not in the arrangement gives none.
//
// colord is asked on a thread of its own, one for the process, so a colord that hangs, dies or is not there costs a
// caller no more than the limits below. The connection is made on first use and again whenever it was lost.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// The longest that visit() waits for colord before its first entry; without an answer there are no entries.
inline constexpr std::chrono::milliseconds kDeviceWalkLimit{5000};
/// The longest that assign() takes altogether.
inline constexpr std::chrono::milliseconds kAssignmentLimit{5000};

/// Returns the present displays.
using ArrangementSource = std::function<std::shared_ptr<const Arrangement>()>;

/// Any thread may call any function, several at once.
class PLATFORM_API ColordDevices {
 public:
  /// `arrangement` is called once in each visit() and assign(), on the caller's thread.
  explicit ColordDevices(ArrangementSource arrangement);

  /// Visits the entries display by display, in the arrangement's order. An entry's description is the device's model,
  /// else its vendor, else the connector; a profile without a file gives an entry without a path.
  void visit(const DeviceProfileVisitor& visit) const;

  /// Makes the file the default profile of the display with this UUID. The file may lie anywhere, but must be a
  /// readable display profile; colord may refuse, too: who may change devices is a matter of its polkit rules, by
  /// default the user of the active session, and root.
  ///
  /// A display that no session daemon has registered is registered first, with what a daemon would say about it, and
  /// kept in colord's database. The assignment lasts: colord remembers it, and a file outside colord's own directories
  /// is made known to a restarted colord again, at once while this process runs and has used colord, else by the next
  /// one that does. True when colord reports the file as the device's default afterwards.
  bool assign(const Uuid& device, const std::string& profile_path) const;

 private:
  ArrangementSource arrangement_;
};

}  // namespace platform::desktop
