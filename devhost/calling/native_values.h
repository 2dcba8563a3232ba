// Values as the bytes that travel between host and plugin, in both directions. One thread at a time.
#pragma once

#include <ffi.h>

#include "devhost/runtime/host.h"

namespace devhost {

/// Who owns a handle that a plugin passes to the host.
enum class Ownership {
  kBorrowed,    ///< the plugin keeps its reference
  kHandedOver,  ///< the host takes the plugin's reference
};

ffi_type* nativeType(const DeclaredType& type);
/// nativeType of a result; void for a method without one.
ffi_type* nativeResultType(const Declaration& declaration);

/// The value, which must be converted to `type`, extended to the 8 bytes of a host's slot: by its sign or with zeros. A
/// handle's reference count is not touched.
std::uint64_t toSlot(const Value& value, const DeclaredType& type);
/// The value in the first bytes at `address`, as many as the type is wide. `where` names the place in a fault.
Value fromSlot(Host& host, const void* address, const DeclaredType& type, Ownership ownership, const char* where);

/// The counted thing that a value refers to; null for nil and for values that are no handles.
Counted* countedOf(const Value& value);

}  // namespace devhost
