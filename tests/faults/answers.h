// What a framework call may answer instead of the truth.
#pragma once

#include <string>
#include <vector>

#include "frameworks/hooks/calls.h"

namespace faults {

struct NamedAnswer {
  std::string name;  ///< such as "null", "a number", "code -1"
  platform::calls::Answer answer;
};

/// Every answer that is tried of the call; at least one.
const std::vector<NamedAnswer>& answersOf(platform::calls::Call call);

/// One thing done to a dictionary that a call hands out.
struct DictionaryEdit {
  std::string what;  ///< the key, such as "DeviceID", or the dictionary as a whole, such as "DeviceEntry"
  std::string name;  ///< what it is, such as "missing" or "a number"
  platform::calls::Call call;
  platform::calls::Edit edit;
};

/// For every call that hands out dictionaries: every key missing and of every wrong type, the dictionary null, empty,
/// and no dictionary.
const std::vector<DictionaryEdit>& dictionaryEdits();

}  // namespace faults
