#include "display/screens.h"

#import <AppKit/AppKit.h>

#include <objc/runtime.h>

#include <cstdlib>

namespace DisplayServices {
namespace {

/// The one vertical offset, in points, by which a display's bounds may lie above the screen's frame.
constexpr CGFloat kVerticalTolerance = 30.0;

// The classes that answers are held against are looked up once: that would be most of what the comparison costs.

Class screenClass() {
  static const Class screen_class = [NSScreen class];
  return screen_class;
}

/// Nil for what is no list.
NSArray* listOrNil(id object) {
  static const Class list_class = [NSArray class];
  return [object isKindOfClass:list_class] ? (NSArray*)object : nil;
}

/// The comparison spares most screens, and with them most of a walk over many, the question.
bool isScreen(id object, Class screen_class) {
  return object_getClass(object) == screen_class || [object isKindOfClass:screen_class];
}

/// An empty element of the screen list counts as the all-zero rectangle.
CGRect frameOf(NSScreen* screen) { return screen == nil ? CGRectMake(0, 0, 0, 0) : [screen frame]; }

/// Deliberately compares the two coordinate systems as they stand, without a conversion.
bool matches(CGRect bounds, CGRect frame) {
  return CGSizeEqualToSize(bounds.size, frame.size) && bounds.origin.x == frame.origin.x &&
         (bounds.origin.y == frame.origin.y || bounds.origin.y == frame.origin.y + kVerticalTolerance);
}

}  // namespace

NSScreen* ScreenWithDisplayID(CGDirectDisplayID displayID) {
  const Class screen_class = screenClass();
  const CGRect bounds = CGDisplayBounds(displayID);
  for (NSScreen* screen in listOrNil([NSScreen screens])) {
    if ((screen == nil || isScreen(screen, screen_class)) && matches(bounds, frameOf(screen))) {
      return screen;
    }
  }
  NSScreen* const main = [NSScreen mainScreen];
  return isScreen(main, screen_class) ? main : nil;
}

double ScaleFactorForDisplay(CGDirectDisplayID displayID) {
  NSScreen* const screen = ScreenWithDisplayID(displayID);
  return screen == nil ? 0.0 : [screen backingScaleFactor];
}

CGDirectDisplayID DisplayIDForRect(CGRect rect) {
  // Deliberately never released: a buffer for one display number per call. Zeroed, so that no display is the number 0.
  auto* const first = static_cast<CGDirectDisplayID*>(std::calloc(1, sizeof(CGDirectDisplayID)));
  if (first == nullptr) {
    return kCGNullDirectDisplay;
  }
  uint32_t count = 0;
  const CGError error = CGGetDisplaysWithRect(rect, 1, first, &count);
  return error == kCGErrorSuccess ? *first : kCGNullDirectDisplay;
}

}  // namespace DisplayServices
