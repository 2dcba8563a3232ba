// Values at the entries' side of the boundary: a plugin passes and receives plain C types, handles as void*.
//
// Handles that a plugin receives come with a reference of its own, which it gives back with the unlock entry of their
// kind. Host's thread.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>

#include "devhost/calling/native_values.h"
#include "devhost/runtime/host.h"

namespace devhost {

/// Gives the plugin a reference, and the handle; null for nil.
template <typename T>
void* give(const Ref<T>& counted) {
  if (!counted) {
    return nullptr;
  }
  counted->addPluginReference();
  return counted.handle();
}

/// A value of `kType` that the plugin passed as a `C`.
template <Type kType, typename C>
Value fromPlugin(C value, Ownership ownership, const char* where) {
  if constexpr (kType == Type::kBoolean) {
    return value != 0;
  } else if constexpr (std::is_pointer_v<C>) {
    return fromSlot(Host::current(), &value, DeclaredType{kType, {}, false}, ownership, where);
  } else {
    return Value(value);
  }
}

/// The value, which must be converted to a variable's form, as a `C` for the plugin.
template <typename C>
C toPlugin(const Value& value) {
  if constexpr (std::is_pointer_v<C>) {
    Counted* const counted = countedOf(value);
    if (counted == nullptr) {
      return static_cast<C>(value.pointer());
    }
    counted->addPluginReference();
    return static_cast<C>(counted->handle());
  } else if constexpr (std::is_floating_point_v<C>) {
    return static_cast<C>(value.real());
  } else if constexpr (std::is_signed_v<C>) {
    return static_cast<C>(value.integer());
  } else {
    return std::holds_alternative<bool>(value.storage()) ? static_cast<C>(value.boolean())
                                                         : static_cast<C>(value.unsignedNumber());
  }
}

/// Runs an entry's body; what it throws is noted as a fault, and `failure` answered.
template <typename Result, typename Body>
Result guarded(const char* where, Result failure, Body body) {
  try {
    return body(Host::current());
  } catch (const std::exception& error) {
    Host::current().handles().addFault(std::string(where) + ": " + error.what());
    return failure;
  }
}

}  // namespace devhost
