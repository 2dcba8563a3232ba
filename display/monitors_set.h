// The set of active displays at one moment, by their UUIDs, and whether it has changed. Host's thread only.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <set>

#include "base/interface.h"

namespace DisplayServices {

struct monitors_set {
  monitors_set() = delete;

  /// Ordered by reference: CoreFoundation has one object per UUID, so equal UUIDs are equal references.
  using UuidSet = std::set<CFUUIDRef>;

  /// The displays as BuildInitialMonitorsSet or the last DisplaysChanged found them. Destroyed at exit, its UUIDs are
  /// not released.
  OSTREVIN_API static UuidSet initialSet;

  /// Adds the UUID of every active display to `set`; a display without one adds null. When CoreGraphics cannot list the
  /// displays the set is left as it was.
  OSTREVIN_API static void buildSet(UuidSet* set);
};

/// Adds the active displays to monitors_set::initialSet, which is not emptied first.
OSTREVIN_API void BuildInitialMonitorsSet();

/// True when the active displays differ from monitors_set::initialSet, which then takes them: a change is reported
/// once. Only which displays are active counts, not where they are or at what resolution.
OSTREVIN_API bool DisplaysChanged();

}  // namespace DisplayServices
