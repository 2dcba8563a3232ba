// Objects that the frameworks hand out: of the expected type, or null. Any thread.
//
// A framework that answers with an object of another type than it documents must not bring the host down: what is about
// to be used as a string, a dictionary or a UUID is asked first whether it is one.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "base/owned_ref.h"

/// The object as a `Ref`, or null when it is null or of another type than `type`.
template <typename Ref>
Ref checkedCast(CFTypeRef object, CFTypeID type) {
  return object != nullptr && CFGetTypeID(object) == type ? static_cast<Ref>(const_cast<void*>(object)) : nullptr;
}

/// Takes over the reference that a function named Create or Copy returned. An object of another type than `type` is
/// released, and null comes in its place.
template <typename Ref>
OwnedRef<Ref> checkedAdopt(CFTypeRef object, CFTypeID type) {
  auto owned = OwnedRef<Ref>::adopt(static_cast<Ref>(const_cast<void*>(object)));
  return checkedCast<Ref>(owned.get(), type) != nullptr ? std::move(owned) : OwnedRef<Ref>();
}

/// Borrowed from the dictionary; null when there is no such key or its value is of another type than `type`.
template <typename Ref>
Ref checkedValue(CFDictionaryRef dictionary, CFStringRef key, CFTypeID type) {
  return checkedCast<Ref>(CFDictionaryGetValue(dictionary, key), type);
}
