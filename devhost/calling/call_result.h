// What comes back from a call of a plugin's method.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/language/value.h"

namespace devhost {

/// What a by-reference parameter held when the call returned.
struct ByReference {
  std::string name;
  DeclaredType type;
  Value value;         ///< read at the width that the plugin writes
  std::uint64_t slot;  ///< all 8 bytes of the host's slot
};

struct CallResult {
  Value result;  ///< nothing for a method without one
  std::vector<ByReference> by_reference;

  /// The by-reference parameter of that name, letters' case aside. Throws ValueError when there is none.
  const Value& operator[](std::string_view name) const { return find(name).value; }
  std::uint64_t slot(std::string_view name) const { return find(name).slot; }

 private:
  const ByReference& find(std::string_view name) const;
};

}  // namespace devhost
