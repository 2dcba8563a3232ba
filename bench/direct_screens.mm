#include "direct_screens.h"

#import <AppKit/AppKit.h>

#include <array>

namespace bench {

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
  std::array<CGDirectDisplayID, 256> displays;
  if (CGGetActiveDisplayList(displays.size(), displays.data(), &count) != kCGErrorSuccess) {
    return UINT32_MAX;
  }
  for (uint32_t i = 0; i < count; ++i) {
    if (displays[i] == display) {
      return i;
    }
  }
  return UINT32_MAX;
}

CGDirectDisplayID directDisplayUnder(CGRect rect) {
  CGDirectDisplayID display = 0;
  uint32_t count = 0;
  return CGGetDisplaysWithRect(rect, 1, &display, &count) == kCGErrorSuccess ? display : 0;
}

}  // namespace bench
