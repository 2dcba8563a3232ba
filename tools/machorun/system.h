// Substitutes for the Mac's functions and variables of libSystem that differ from this system's. Those that do not are
// used as they are here, by their names.
#pragma once

#include <span>
#include <string_view>

namespace machorun {

/// A symbol as in the file, and its function or variable.
struct Substitute {
  std::string_view symbol;
  void* address;
};

template <typename Result, typename... Parameters>
Substitute substitute(std::string_view symbol, Result (*function)(Parameters...)) {
  return {symbol, reinterpret_cast<void*>(function)};
}

/// Null for a symbol that has none.
void* findSubstitute(std::string_view symbol);

/// Those about threads; the others are system.cpp's own.
std::span<const Substitute> threadSubstitutes();

/// Numbers of errors: this system's and the Mac's.
int toMacError(int number);
int fromMacError(int number);

}  // namespace machorun
