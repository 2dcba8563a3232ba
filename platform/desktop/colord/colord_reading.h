// Reading colord's devices and profiles through libcolord, in as few turns as it allows: what does not depend on one
// another is asked for together. For the thread that the operation belongs to.
#pragma once

#include <colord.h>

#include <memory>
#include <vector>

#include "desktop/colord/colord_model.h"
#include "desktop/colord/glib_operation.h"

namespace platform::desktop {

/// Reads the object's properties, unless that was done before; false when colord does not have it or did not answer.
bool connectDevice(const Operation& operation, CdDevice* device);
bool connectProfile(const Operation& operation, CdProfile* profile);

/// `list` holds CdDevice objects, one an object path or more. A device that goes away meanwhile is left out. Null when
/// the operation expired.
std::shared_ptr<const std::vector<ColordDevice>> readDevices(const Operation& operation, GPtrArray* list);

}  // namespace platform::desktop
