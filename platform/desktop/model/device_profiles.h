// Where the live desktop has its device profiles from.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "desktop/model/desktop.h"

namespace platform::desktop {

/// Says which displays there are.
using ArrangementSource = std::function<std::shared_ptr<const Arrangement>()>;

/// Any thread may call any function, several at once.
class DeviceProfiles {
 public:
  virtual ~DeviceProfiles() = default;
  /// Visits every (device, profile) entry, on the calling thread, until the visitor answers false.
  virtual void visit(const DeviceProfileVisitor& visit) const = 0;
  /// Makes the file the device's profile; false when it cannot be.
  virtual bool assign(const Uuid& device, const std::string& profile_path) const = 0;
};

}  // namespace platform::desktop
