// Another Foundation: an older one, or one without lists, for the whole process while an object lives; and strings that
// Foundation does not make.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <vector>

namespace other_foundation {

/// A request for a string's characters in an encoding.
struct DataRequest {
  unsigned long encoding;
  bool lossy;
  friend bool operator==(const DataRequest&, const DataRequest&) = default;
};

/// What a noting string has received.
struct Notes {
  std::vector<DataRequest> data;
  std::vector<std::string> searches;  ///< the selectors
};

/// A string, in the current autorelease pool, that records requests, has no data and contains nothing.
CFStringRef notingString(Notes& notes);

/// NSProcessInfo lacks isOperatingSystemAtLeastVersion:.
class WithoutVersionQuestion {
 public:
  WithoutVersionQuestion();
  ~WithoutVersionQuestion();
  WithoutVersionQuestion(const WithoutVersionQuestion&) = delete;
  WithoutVersionQuestion& operator=(const WithoutVersionQuestion&) = delete;
};

/// NSLocale has no country and no language codes.
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
