// Objects of every type that the frameworks know, for answers of the wrong type. They live for the life of the process.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>
#include <vector>

namespace faults {

struct NamedObject {
  std::string name;  ///< such as "a number"
  CFTypeRef object;
};

/// One of each type, with "an array", whose element is a number, and "an object" of no CoreFoundation type.
const std::vector<NamedObject>& sampleObjects();
/// The one of that name. Throws std::out_of_range when there is none.
CFTypeRef sampleObject(const std::string& name);

/// Strings and lists that are of the right type and yet odd.
CFStringRef emptyString();
/// A string that has no UTF-8 form: half of a surrogate pair.
CFStringRef brokenString();
CFTypeRef emptyArray();
CFDictionaryRef emptyDictionary();
/// The same one each time, with what was put into it.
CFDictionaryRef mutableDictionary();
CFDataRef emptyData();
/// 7 bytes, which is shorter than any tag element.
CFDataRef shortData();

}  // namespace faults
