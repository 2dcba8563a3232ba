#include "display/monitors_set.h"

#include <ColorSync/ColorSync.h>

#include "display/internal.h"

namespace DisplayServices {

monitors_set::UuidSet monitors_set::initialSet;

void monitors_set::buildSet(UuidSet* set) {
  if (set == nullptr) {
    return;
  }
  for (const CGDirectDisplayID display : internal::activeDisplays()) {
    // The set compares references, so each is kept for the life of the process, also that of a UUID already in the set.
    set->insert(internal::leakOnPurpose(CGDisplayCreateUUIDFromDisplayID(display)));
  }
}

void BuildInitialMonitorsSet() { monitors_set::buildSet(&monitors_set::initialSet); }

bool DisplaysChanged() {
  monitors_set::UuidSet now;
  monitors_set::buildSet(&now);
  if (now == monitors_set::initialSet) {
    return false;
  }
  monitors_set::initialSet = now;
  return true;
}

}  // namespace DisplayServices
