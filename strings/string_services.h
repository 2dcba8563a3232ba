// Bridges between CoreFoundation's strings, URLs and data and NUL-terminated UTF-8 text.
//
// Any thread that has an autorelease pool in place. Nothing that these functions return is owned by the caller: an
// object belongs to the current autorelease pool, and a NUL-terminated string lives as long as the string object that
// it was taken from, at most until that pool is drained. Callers copy what they keep.
//
// Null in gives null out, and so does text that is not valid UTF-8. Only a null for which Foundation would raise an
// exception is not passed to it. No function raises or throws.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "base/interface.h"

namespace StringServices {

/// The part of the URL's path after its last separator; "/" for the root.
OSTREVIN_API CFStringRef LastPathComponent(CFURLRef url);

/// A file URL that is never a directory's: the file system is not read, and a trailing "/" of the path is dropped.
OSTREVIN_API CFURLRef CFStringToCFURL(CFStringRef path);

/// The string's UTF-16 units, high byte first, without a byte-order mark.
OSTREVIN_API CFDataRef CFStringRefToUTF16BE(CFStringRef string);
/// One byte per character that the encoding has; the others are altered or dropped as the platform does it.
OSTREVIN_API CFDataRef CFStringRefToASCII(CFStringRef string);
OSTREVIN_API CFDataRef CFStringRefToMac(CFStringRef string);

/// The first of all ISO country codes and of all ISO language codes: deliberately not the user's.
OSTREVIN_API CFStringRef CountryCode();
OSTREVIN_API CFStringRef LanguageCode();

OSTREVIN_API CFStringRef UTF8StringToCFString(const char* text);
/// The URL's path without its escapes, and without a trailing "/" unless it is the root.
OSTREVIN_API const char* CFURLRefToPOSIXPath(CFURLRef url);
/// A file URL; of an existing directory, one that ends in "/". A relative path starts at the current directory, and the
/// empty path is the current directory.
OSTREVIN_API CFURLRef POSIXPathToCFURLRef(const char* path);
/// Null for a string with a surrogate that stands alone. A string with a NUL character seems to end there.
OSTREVIN_API const char* CFStringRefToUTF8String(CFStringRef string);

/// Case-sensitive. False when `part` is empty or null. A null text contains nothing; before macOS 10.10, any part.
OSTREVIN_API bool CFStringRefContains(CFStringRef text, CFStringRef part);

}  // namespace StringServices
