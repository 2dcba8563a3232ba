// Ties display numbers to screens and to screen rectangles. Nothing is kept between calls.
//
// Main thread only where a function messages AppKit.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include "base/interface.h"

#ifdef __OBJC__
@class NSScreen;
#else
// To C++ an Objective-C class is an opaque type.
struct NSScreen;
#endif

namespace DisplayServices {

/// The screen that shows a display: the first in AppKit's order whose frame has exactly the size and x of the display's
/// bounds and either the same y or a y smaller by exactly 30 points. CoreGraphics' bounds (origin at the upper left of
/// the main display) and AppKit's frames (origin at the lower left of the main screen) are compared as they stand. When
/// none matches: the main screen, or null when there is none. Main thread. Borrowed from AppKit.
OSTREVIN_API NSScreen* ScreenWithDisplayID(CGDirectDisplayID displayID);

/// Pixels per point of ScreenWithDisplayID's screen; 0 when there is no screen at all. Main thread.
OSTREVIN_API double ScaleFactorForDisplay(CGDirectDisplayID displayID);

/// The first display that CoreGraphics lists for a rectangle in global coordinates (points, y down); 0 when there is
/// none and when CoreGraphics reports an error. Any thread.
OSTREVIN_API CGDirectDisplayID DisplayIDForRect(CGRect rect);

}  // namespace DisplayServices
