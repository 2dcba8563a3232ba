// Messages of the plugin to Foundation's objects, counted and made to fail.
//
// The program that links this has an objc_msg_lookup of its own, which the plugin's message expressions reach before
// the Objective-C run-time's. Messages that others send are not touched. One thread at a time sets and clears.
#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace faults {

/// From now on it is the library that has this address whose messages are looked at.
void watchMessagesOf(const void* address_in_library);
/// Every selector that the watched libraries have sent since the process began.
std::set<std::string> messagesSent();
/// Every message of this selector, or the nth from now on only, answers `result` and reaches nobody.
void answerMessage(const std::string& selector, const void* result, std::uint64_t only_nth = 0);
void answerNoMessage();

}  // namespace faults
