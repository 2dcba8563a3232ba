#include "faults/host_answers.h"

#include <cstdint>
#include <limits>

namespace faults {
namespace {

void doNothing() {}
void* answerNull() { return nullptr; }

/// Text that the host owns, as every text that it answers.
const char* answerEmptyText(const void*) { return ""; }
const char* answerBrokenText(const void*) { return "\xFF\xFE\xC0"; }
const char* answerPartOfACharacter(const void*) { return "/\xE2\x82"; }
const char* answerLongText(const void*) {
  static const std::string text(1 << 20, 'x');
  return text.c_str();
}

std::int64_t answerZero(const void*) { return 0; }
std::int64_t answerMinusOne(const void*) { return -1; }
std::int64_t answerMost(const void*) { return std::numeric_limits<std::int64_t>::max(); }

template <auto kFunction>
void* answerAddressOf() {
  return reinterpret_cast<void*>(kFunction);
}

HostAnswer missing(const char* entry) {
  return {entry, "missing", [=](devhost::Host& host) { host.entries().remove(entry); }};
}

template <typename Function>
HostAnswer answering(const char* entry, const char* name, Function* function) {
  return {entry, name, [=](devhost::Host& host) { host.entries().set(entry, function); }};
}

}  // namespace

const std::vector<HostAnswer>& hostAnswers() {
  static const std::vector<HostAnswer> answers = {
      missing("PluginRegisterModule"),
      answering("PluginRegisterModule", "doing nothing", doNothing),
      missing("REALBuildStringWithEncoding"),
      answering("REALBuildStringWithEncoding", "null", answerNull),
      missing("StringGetCString"),
      answering("StringGetCString", "null", answerNull),
      answering("StringGetCString", "an empty text", answerEmptyText),
      answering("StringGetCString", "bytes that are no UTF-8", answerBrokenText),
      answering("StringGetCString", "part of a character", answerPartOfACharacter),
      answering("StringGetCString", "a long text", answerLongText),
      missing("REALLoadGlobalMethod"),
      answering("REALLoadGlobalMethod", "null", answerNull),
      answering("REALLoadGlobalMethod", "a length of 0", answerAddressOf<answerZero>),
      answering("REALLoadGlobalMethod", "a length of -1", answerAddressOf<answerMinusOne>),
      answering("REALLoadGlobalMethod", "the greatest length", answerAddressOf<answerMost>),
      missing("REALUnlockString"),
      answering("REALUnlockString", "doing nothing", doNothing),
      missing("REALLoadObjectMethod"),
      answering("REALLoadObjectMethod", "null", answerNull),
      missing("RuntimeArrayCreateSingleDimBoundedArray"),
      answering("RuntimeArrayCreateSingleDimBoundedArray", "null", answerNull),
      missing("PluginStringArrayInsertProc"),
      answering("PluginStringArrayInsertProc", "null", answerNull),
      answering("PluginStringArrayInsertProc", "doing nothing", answerAddressOf<doNothing>),
  };
  return answers;
}

}  // namespace faults
