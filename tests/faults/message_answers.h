// What Foundation's objects may answer the plugin's messages.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace faults {

struct MessageAnswer {
  std::string selector;
  std::string name;  ///< such as "null"
  const void* result;
};

/// For the names of tests.
inline std::ostream& operator<<(std::ostream& out, const MessageAnswer& answer) {
  return out << answer.selector << ": " << answer.name;
}

const std::vector<MessageAnswer>& messageAnswers();

}  // namespace faults
