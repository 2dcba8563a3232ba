#include "direct_screens.h"

#import <AppKit/AppKit.h>

#include <array>
#include <cstdlib>

namespace bench {
namespace {

constexpr uint32_t kNowhere = UINT32_MAX;

uint32_t positionOf(CGDirectDisplayID display, const CGDirectDisplayID* displays, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i) {
    if (displays[i] == display) {
      return i;
    }
  }
  return kNowhere;
}

}  // namespace

double directScale(CGDirectDisplayID display) {
  const CGRect bounds = CGDisplayBounds(display);
  for (NSScreen* screen in [NSScreen screens]) {
    const CGRect frame = [screen frame];
    if (CGSizeEqualToSize(bounds.size, frame.size) && bounds.origin.x == frame.origin.x &&
        (bounds.origin.y == frame.origin.y || bounds.origin.y == frame.origin.y + 30.0)) {
      return [screen backingScaleFactor];
    }
  }
  return [[NSScreen mainScreen] backingScaleFactor];
}

CGRect directBounds(CGDirectDisplayID display) {
  const CGRect bounds = CGDisplayBounds(display);
  directScale(display);
  return bounds;
}

uint32_t directIndex(CGDirectDisplayID display) {
  uint32_t count = 0;
  CGGetActiveDisplayList(0, nullptr, &count);
  static std::array<CGDirectDisplayID, 10001> displays;
  const CGError error = CGGetActiveDisplayList(displays.size(), displays.data(), &count);
  return error == kCGErrorSuccess ? positionOf(display, displays.data(), count) : kNowhere;
}

uint32_t directIndexKeepingBuffer(CGDirectDisplayID display) {
  uint32_t count = 0;
  CGGetActiveDisplayList(0, nullptr, &count);
  auto* const displays = static_cast<CGDirectDisplayID*>(std::malloc(count * sizeof(CGDirectDisplayID)));
  const CGError error = CGGetActiveDisplayList(count, displays, &count);
  return error == kCGErrorSuccess ? positionOf(display, displays, count) : kNowhere;
}

CGDirectDisplayID directDisplayUnder(CGRect rect) {
  CGDirectDisplayID display = 0;
  uint32_t count = 0;
  return CGGetDisplaysWithRect(rect, 1, &display, &count) == kCGErrorSuccess ? display : 0;
}

CGDirectDisplayID directDisplayUnderKeepingBuffer(CGRect rect) {
  auto* const display = static_cast<CGDirectDisplayID*>(std::malloc(sizeof(CGDirectDisplayID)));
  uint32_t count = 0;
  return CGGetDisplaysWithRect(rect, 1, display, &count) == kCGErrorSuccess ? *display : 0;
}

}  // namespace bench
