// Values of the frameworks' dictionaries: of the expected type, or null. Any thread.
//
// A dictionary's values are data: one of another type than its key documents must not bring the host down.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// The object as a `Ref`, or null when it is null or of another type than `type`.
template <typename Ref>
Ref checkedCast(CFTypeRef object, CFTypeID type) {
  return object != nullptr && CFGetTypeID(object) == type ? static_cast<Ref>(const_cast<void*>(object)) : nullptr;
}

/// Borrowed from the dictionary; null when there is no such key or its value is of another type than `type`.
template <typename Ref>
Ref checkedValue(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
  return checkedCast<Ref>(CFDictionaryGetValue(dictionary, key), type);
}
