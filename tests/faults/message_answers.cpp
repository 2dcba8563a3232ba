#include "faults/message_answers.h"

#include "faults/objects.h"

namespace faults {

const std::vector<MessageAnswer>& messageAnswers() {
  static const std::vector<MessageAnswer> answers = {
      {"UTF8String", "null", nullptr},
      {"UTF8String", "an empty text", ""},
      {"UTF8String", "bytes that are no UTF-8", "\xFF\xFE\xC0"},
      {"path", "null", nullptr},
      {"path", "an empty string", emptyString()},
      {"path", "a string that is no text", brokenString()},
      {"stringWithUTF8String:", "null", nullptr},
      {"stringWithUTF8String:", "an empty string", emptyString()},
      {"stringWithUTF8String:", "a string that is no text", brokenString()},
      {"fileURLWithPath:", "null", nullptr},
      {"fileURLWithPath:", "another URL", sampleObject("a URL")},
  };
  return answers;
}

}  // namespace faults
