// Foundation as it is elsewhere: an older one, or one without lists. Changed for the whole process while an object
// lives.
#pragma once

namespace other_foundation {

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
