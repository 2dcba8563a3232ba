// The framework calls that a remembered name needs, made directly: the twins of GetName.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

namespace bench {

/// The text of the display's UUID. The caller releases.
CFStringRef keyOf(CGDirectDisplayID display);
/// A dictionary with the display's name under its UUID's text.
CFDictionaryRef makeNames(CGDirectDisplayID display, CFStringRef name);
/// The display's UUID, its text, and the look-up. Borrowed from the dictionary.
CFStringRef directName(CFDictionaryRef names, CGDirectDisplayID display);
/// The bytes that Foundation gives for a string; for the life of the autorelease pool.
const char* directText(CFStringRef text);

}  // namespace bench
