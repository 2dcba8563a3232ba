// Reading colord's devices and profiles through libcolord; independent calls run at the same time. For the operation's
// thread.
#pragma once

#include <colord.h>

#include <memory>
#include <vector>

#include "desktop/colord/colord_model.h"
#include "desktop/colord/glib_operation.h"

namespace platform::desktop {

/// Reads the object's properties, unless they have been read; false when colord has no such object or does not reply.
bool connectDevice(const Operation& operation, CdDevice* device);
bool connectProfile(const Operation& operation, CdProfile* profile);

/// `list` holds CdDevice objects, some perhaps twice. A device that disappears meanwhile is left out. Null when the
/// operation expires.
std::shared_ptr<const std::vector<ColordDevice>> readDevices(const Operation& operation, GPtrArray* list);

}  // namespace platform::desktop
