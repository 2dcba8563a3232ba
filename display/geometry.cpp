// Which displays are active, and where they are.
#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "base/interface.h"
#include "display/internal.h"
#include "display/screens.h"

namespace DisplayServices::internal {
namespace {

/// Truncates toward zero; a value that does not fit, and NaN, is the least 32-bit number.
std::int32_t truncated(double value) {
  constexpr double kBelow = -2147483649.0;
  constexpr double kAbove = 2147483648.0;
  if (value > kBelow && value < kAbove) {
    return static_cast<std::int32_t>(value);
  }
  return std::numeric_limits<std::int32_t>::min();
}

}  // namespace

CGDirectDisplayID* leakedDisplayList(std::uint32_t capacity) {
  return static_cast<CGDirectDisplayID*>(std::calloc(capacity, sizeof(CGDirectDisplayID)));
}

std::span<const CGDirectDisplayID> activeDisplays() {
  std::uint32_t capacity = 0;
  // The error is deliberately ignored: only the count matters.
  CGGetActiveDisplayList(0, nullptr, &capacity);
  CGDirectDisplayID* const displays = capacity != 0 ? leakedDisplayList(capacity) : nullptr;
  if (displays == nullptr) {
    return {};
  }
  std::uint32_t count = capacity;
  if (CGGetActiveDisplayList(capacity, displays, &count) != kCGErrorSuccess) {
    return {};
  }
  // Displays come and go between the two calls: there may be fewer than before, or more than the buffer holds. Each
  // number counts, 0 too.
  return {displays, std::min(count, capacity)};
}

std::uint32_t indexOf(CGDirectDisplayID displayID) {
  const auto displays = activeDisplays();
  const auto found = std::find(displays.begin(), displays.end(), displayID);
  return found != displays.end() ? static_cast<std::uint32_t>(found - displays.begin())
                                 : static_cast<std::uint32_t>(kQVIDisplayNotFound);
}

CGRect boundsOf(CGDirectDisplayID displayID) {
  const CGRect bounds = CGDisplayBounds(displayID);
  // Deliberately called and not used: rectangles are in points at any scale.
  static_cast<void>(ScaleFactorForDisplay(displayID));
  return bounds;
}

Edges edgesOf(CGDirectDisplayID displayID) {
  const CGRect bounds = boundsOf(displayID);
  return {.left = truncated(bounds.origin.x),
          .top = truncated(bounds.origin.y),
          .right = truncated(bounds.origin.x + bounds.size.width),
          .bottom = truncated(bounds.origin.y + bounds.size.height)};
}

CGDirectDisplayID displayUnderWindow(double left, double top, double width, double height) {
  // Deliberately begins at the window's lower edge.
  return DisplayIDForRect(CGRectMake(left, top + height, width, height));
}

}  // namespace DisplayServices::internal
