// Values out of dictionaries that the frameworks fill: present and of the expected type, or null. Any thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

namespace DisplayServices::internal {

/// The object as a `Ref`, or null when it is null or of another type than `type`.
template <typename Ref>
Ref checkedCast(CFTypeRef object, CFTypeID type) {
  return object != nullptr && CFGetTypeID(object) == type ? static_cast<Ref>(object) : nullptr;
}

/// Borrowed from the dictionary; null when there is no such key or its value is of another type than `type`.
template <typename Ref>
Ref checkedValue(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
  return checkedCast<Ref>(CFDictionaryGetValue(dictionary, key), type);
}

}  // namespace DisplayServices::internal
