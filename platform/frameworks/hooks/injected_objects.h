// How a framework call uses what its hook injects: an object instead of its own, an edited dictionary.
// Any thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>

#include "frameworks/hooks/calls.h"

namespace platform {

/// What the call returns at once; nullopt when it does its work. For calls that return a borrowed object.
template <typename Ref>
std::optional<Ref> borrowedFault(const calls::Fault& fault) {
  if (fault.fail) {
    return Ref{};
  }
  if (fault.object != nullptr) {
    return (Ref) const_cast<void*>(fault.object);
  }
  return std::nullopt;
}

/// The same for calls whose result the caller releases.
template <typename Ref>
std::optional<Ref> retainedFault(const calls::Fault& fault) {
  if (!fault.fail && fault.object != nullptr) {
    CFRetain(fault.object);
  }
  return borrowedFault<Ref>(fault);
}

/// Passes the entry, or what the hook makes of it, to `look` and returns its result.
template <typename Look>
bool showEntry(const calls::Edit* edit, CFDictionaryRef entry, Look look) {
  if (edit == nullptr) {
    return look(entry);
  }
  const CFTypeRef edited = (*edit)(entry);
  const bool result = look(static_cast<CFDictionaryRef>(edited));
  if (edited != nullptr) {
    CFRelease(edited);
  }
  return result;
}

}  // namespace platform
