#include "display/screens.h"

#import <AppKit/AppKit.h>

#include "display/internal.h"

namespace DisplayServices {
namespace {

/// The one vertical offset, in points, by which a display's bounds may lie above the screen's frame.
constexpr CGFloat kVerticalTolerance = 30.0;

/// An empty element of the screen list counts as the all-zero rectangle.
CGRect frameOf(NSScreen* screen) { return screen == nil ? CGRectMake(0, 0, 0, 0) : [screen frame]; }

/// Deliberately compares the two coordinate systems as they stand, without a conversion.
bool matches(CGRect bounds, CGRect frame) {
  return CGSizeEqualToSize(bounds.size, frame.size) && bounds.origin.x == frame.origin.x &&
         (bounds.origin.y == frame.origin.y || bounds.origin.y == frame.origin.y + kVerticalTolerance);
}

}  // namespace

NSScreen* ScreenWithDisplayID(CGDirectDisplayID displayID) {
  const CGRect bounds = CGDisplayBounds(displayID);
  for (NSScreen* screen in [NSScreen screens]) {
    if (matches(bounds, frameOf(screen))) {
      return screen;
    }
  }
  return [NSScreen mainScreen];
}

double ScaleFactorForDisplay(CGDirectDisplayID displayID) {
  NSScreen* const screen = ScreenWithDisplayID(displayID);
  return screen == nil ? 0.0 : [screen backingScaleFactor];
}

CGDirectDisplayID DisplayIDForRect(CGRect rect) {
  CGDirectDisplayID* const first = internal::leakedDisplayList(1);
  if (first == nullptr) {
    return kCGNullDirectDisplay;
  }
  // For one display; the count is deliberately not examined: without a display the buffer stays 0.
  uint32_t count = 0;
  const CGError error = CGGetDisplaysWithRect(rect, 1, first, &count);
  return error == kCGErrorSuccess ? *first : kCGNullDirectDisplay;
}

}  // namespace DisplayServices
