// colord's client, loaded when it is first needed.
//
// It is a library of its own, libOstrevinColord, beside this one: it needs GIO and libcolord, whose loading costs as
// much as all the rest of ours, and most of what the plugin answers does not need colord.
#pragma once

#include <mutex>

#include "desktop/model/device_profiles.h"

namespace platform::desktop {

/// Without the library there are no entries, and nothing can be assigned. Any thread may call any function.
class ColordLibrary final : public DeviceProfiles {
 public:
  /// See ColordDevices, which this is once the library is loaded.
  explicit ColordLibrary(ArrangementSource arrangement) : arrangement_(std::move(arrangement)) {}

  void visit(const DeviceProfileVisitor& visit) const override;
  bool assign(const Uuid& device, const std::string& profile_path) const override;

 private:
  const DeviceProfiles* loaded() const;

  ArrangementSource arrangement_;
  mutable std::once_flag once_;
  mutable std::unique_ptr<const DeviceProfiles> devices_;
};

}  // namespace platform::desktop
