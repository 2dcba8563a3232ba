// The framework calls that methods of the plugin make, made directly: their twins.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

namespace bench {

/// GetScale: the bounds, the screens compared with them, and the scale.
double directScale(CGDirectDisplayID display);
/// GetRect and GetCGRect: the bounds, and then all that GetScale asks for.
CGRect directBounds(CGDirectDisplayID display);
/// GetIndex: the count and the list of active displays, and the search. UINT32_MAX: not found.
uint32_t directIndex(CGDirectDisplayID display);
/// DisplayIDForWindow.
CGDirectDisplayID directDisplayUnder(CGRect rect);

/// The same two with a heap buffer that is never released, as the plugin's deliberately is.
uint32_t directIndexKeepingBuffer(CGDirectDisplayID display);
CGDirectDisplayID directDisplayUnderKeepingBuffer(CGRect rect);

/// The text of the display's UUID. The caller releases.
CFStringRef keyOf(CGDirectDisplayID display);
/// A dictionary with the name under the text of the display's UUID. The caller releases.
CFDictionaryRef makeNames(CGDirectDisplayID display, CFStringRef name);
/// GetName: the display's UUID, its text, and the look-up. Borrowed from the dictionary.
CFStringRef directName(CFDictionaryRef names, CGDirectDisplayID display);
/// The UTF-8 bytes that Foundation keeps for a string until the autorelease pool ends.
const char* directText(CFStringRef text);

}  // namespace bench
