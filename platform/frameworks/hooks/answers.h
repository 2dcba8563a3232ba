// How a framework call uses its hook's answer: an object instead of its own, an edited dictionary.
// Any thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>

#include "frameworks/hooks/calls.h"

namespace platform {

/// What the call returns at once; nullopt when it does its work. For calls that return a borrowed object.
template <typename Ref>
std::optional<Ref> borrowedAnswer(const calls::Answer& answer) {
  if (answer.fail) {
    return Ref{};
  }
  if (answer.object != nullptr) {
    return (Ref) const_cast<void*>(answer.object);
  }
  return std::nullopt;
}

/// The same for calls whose result the caller releases.
template <typename Ref>
std::optional<Ref> retainedAnswer(const calls::Answer& answer) {
  if (!answer.fail && answer.object != nullptr) {
    CFRetain(answer.object);
  }
  return borrowedAnswer<Ref>(answer);
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
