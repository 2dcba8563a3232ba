// What the built plugin says of itself: which symbols it wants, which messages it sends, where its variables are.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace faults {

/// The symbols that the dynamic linker has to find elsewhere, without their versions.
std::set<std::string> undefinedSymbols(const std::string& library);
/// The symbols that other libraries find in this one, without their versions.
std::set<std::string> definedSymbols(const std::string& library);
/// All symbols of the library's own with their offsets from where it is loaded; the static table, with local ones.
std::map<std::string, std::uintptr_t> ownSymbols(const std::string& library);
/// The selectors of the messages that the library's code sends.
std::set<std::string> sentSelectors(const std::string& library);

}  // namespace faults
