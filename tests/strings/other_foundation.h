// Foundation as it is elsewhere: an older one, or one without lists, changed for the whole process while an object
// lives; and strings that others may hand over.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string_view>
#include <vector>

namespace other_foundation {

/// A string of `count` of these code units, in the current autorelease pool. All of them are text; the part need not
/// be.
CFStringRef partOf(std::u16string_view units, std::size_t begin, std::size_t count);

/// What a string was asked for: its characters in an encoding, with losses or without.
struct AskedForData {
  unsigned long encoding;
  bool lossy;
  friend bool operator==(const AskedForData&, const AskedForData&) = default;
};

/// A string, in the current autorelease pool, that only takes note of what it is asked for and has no data.
CFStringRef stringThatNotes(std::vector<AskedForData>& asked);

/// NSProcessInfo cannot be asked whether the system is of a version at least.
class WithoutVersionQuestion {
 public:
  WithoutVersionQuestion();
  ~WithoutVersionQuestion();
  WithoutVersionQuestion(const WithoutVersionQuestion&) = delete;
  WithoutVersionQuestion& operator=(const WithoutVersionQuestion&) = delete;
};

/// NSLocale knows no country and no language.
class WithoutCodes {
 public:
  WithoutCodes();
  ~WithoutCodes();
  WithoutCodes(const WithoutCodes&) = delete;
  WithoutCodes& operator=(const WithoutCodes&) = delete;

 private:
  void (*countries_)();
  void (*languages_)();
};

}  // namespace other_foundation
