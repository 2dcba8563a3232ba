// The framework calls of the geometry methods, made directly: the twins of the plugin's methods.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

namespace bench {

/// Bounds, then the screens compared with them, then the scale: what GetScale asks for.
double directScale(CGDirectDisplayID display);
/// Bounds, and then everything that GetScale asks for: what GetRect and GetCGRect ask for.
CGRect directBounds(CGDirectDisplayID display);
/// Both questions for the active displays, and the search: what GetIndex asks for.
uint32_t directIndex(CGDirectDisplayID display);
/// What DisplayIDForWindow asks for.
CGDirectDisplayID directDisplayUnder(CGRect rect);

/// The two that the plugin answers in a heap buffer that it never releases, with a buffer of that kind.
uint32_t directIndexKeepingBuffer(CGDirectDisplayID display);
CGDirectDisplayID directDisplayUnderKeepingBuffer(CGRect rect);

}  // namespace bench
