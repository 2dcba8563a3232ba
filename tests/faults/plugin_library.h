// The built plugin: the symbols that it needs, and the messages that it sends, which can be made to fail.
//
// The program that links this has an objc_msg_lookup of its own, which the plugin's message expressions reach before
// the Objective-C run-time's. Messages of others pass through. One thread at a time sets and clears.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace faults {

/// Whether the library is for the Mac. Then names are those of C, without the leading underscore.
bool isForMac(const std::string& library);
/// The symbols that the dynamic linker has to find elsewhere, without their versions.
std::set<std::string> undefinedSymbols(const std::string& library);
/// The symbols that other libraries find in this one, without their versions.
std::set<std::string> definedSymbols(const std::string& library);
/// All of the library's own symbols, local ones too, with their offsets from its load address.
std::map<std::string, std::uintptr_t> ownSymbols(const std::string& library);
/// The selectors of the messages that the library's code sends.
std::set<std::string> sentSelectors(const std::string& library);

/// Watches the messages of the library at this address from now on.
void watchMessagesOf(const void* address_in_library);
/// Every selector that the watched libraries have sent since the process began.
std::set<std::string> messagesSent();
/// Every message of this selector returns `result` and is not delivered.
void replaceMessageResult(const std::string& selector, const void* result);
void restoreMessageResults();

}  // namespace faults
