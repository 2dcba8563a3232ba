// The records in which a plugin describes a module, read as raw memory with the layout of host interface version 13.
//
// Module record, 192 bytes: at 0 the interface version, at 8 the name, at 16 the first row of the method table, at 24
// the number of rows, from 32 twenty further fields. Method row, 48 bytes: at 0 the function, at 8 a second function,
// at 16 the declaration, from 24 three further fields. All fields are 8 bytes wide. Any thread may read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "devhost/language/declaration.h"

namespace devhost {

inline constexpr std::size_t kModuleRecordSize = 192;
inline constexpr std::size_t kMethodRowSize = 48;
/// More rows than this mean that the record is not a module record.
inline constexpr std::int64_t kMaxMethodRows = 4096;

struct Method {
  Declaration declaration;
  const void* function = nullptr;
  const void* second_function = nullptr;
  std::array<std::uint64_t, 3> further{};
};

struct Module {
  const void* record = nullptr;
  std::int64_t version = 0;
  std::string name;
  std::vector<Method> methods;
  std::array<std::uint64_t, 20> further{};
};

/// A plugin that cannot be loaded, or whose records make no sense. What() is one line.
class PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a record and its rows in place. Throws PluginError for null pointers, texts without an end, a count that is
/// not from 1 to kMaxMethodRows, and declarations that cannot be parsed. Pointers to
/// unmapped memory are not detected.
Module readModule(const void* record);

}  // namespace devhost
