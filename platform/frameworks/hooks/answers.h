// What the frameworks do with an answer that a hook gave: objects in place of their own, and edited dictionaries.
// Any thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>

#include "frameworks/hooks/calls.h"

namespace platform {

/// What the call answers at once; nothing when it is to do its work. For calls that hand out a borrowed object.
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

/// The same for calls whose caller releases the result: an object comes with a reference.
template <typename Ref>
std::optional<Ref> retainedAnswer(const calls::Answer& answer) {
  if (!answer.fail && answer.object != nullptr) {
    CFRetain(answer.object);
  }
  return borrowedAnswer<Ref>(answer);
}

/// Has `look` look at the entry, or at what the hook makes of it, and answers what `look` answers.
template <typename Look>
bool showEntry(const calls::Edit* edit, CFDictionaryRef entry, Look look) {
  if (edit == nullptr) {
    return look(entry);
  }
  const CFTypeRef edited = (*edit)(entry);
  const bool answer = look(static_cast<CFDictionaryRef>(edited));
  if (edited != nullptr) {
    CFRelease(edited);
  }
  return answer;
}

}  // namespace platform
