// Foundation as it is elsewhere: an older one, or one without lists, changed for the whole process while an object
// lives; and strings that others may hand over.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string_view>

namespace other_foundation {

/// A string of these code units, in the current autorelease pool; they need not be text.
CFStringRef stringOfUnits(std::u16string_view units);

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
