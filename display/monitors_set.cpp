#include "display/monitors_set.h"

#include <ColorSync/ColorSync.h>
#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "display/display_services.h"
#include "display/kept.h"

namespace DisplayServices {

monitors_set::UuidSet monitors_set::initialSet;

void monitors_set::buildSet(UuidSet* set) {
  std::uint32_t count = 0;
  CGGetActiveDisplayList(0, nullptr, &count);  // only the count is looked at, deliberately not the error
  if (set == nullptr || count == 0) {
    return;
  }
  // Deliberately never freed: a buffer per call, 4 bytes a display. Zeroed, so that what is not written is no display.
  auto* const displays = static_cast<CGDirectDisplayID*>(std::calloc(count, sizeof(CGDirectDisplayID)));
  if (displays == nullptr) {
    return;
  }
  const std::uint32_t capacity = count;
  if (CGGetActiveDisplayList(capacity, displays, &count) != kCGErrorSuccess) {
    return;
  }
  // Displays come and go between the two calls: fewer than before may be listed, and no more than there is room for.
  count = std::min(count, capacity);
  for (std::uint32_t i = 0; i < count && displays[i] != kCGNullDirectDisplay; ++i) {
    // The reference is kept for the life of the process, also that of a UUID that is in the set already.
    set->insert(internal::kept(CGDisplayCreateUUIDFromDisplayID(displays[i])));
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
