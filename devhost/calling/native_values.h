// Values as the bytes that travel between host and plugin, in both directions. One thread at a time.
#pragma once

#include <ffi.h>

#include <cstdint>
#include <vector>

#include "devhost/language/value.h"
#include "devhost/runtime/runtime.h"

namespace devhost {

/// A declaration's native signature.
class NativeSignature {
 public:
  /// With `for_object`, the object comes first, as in methods of objects.
  NativeSignature(const Declaration& declaration, bool for_object);
  NativeSignature(const NativeSignature&) = delete;
  NativeSignature& operator=(const NativeSignature&) = delete;

  ffi_cif& interface() { return interface_; }

 private:
  std::vector<ffi_type*> types_;
  ffi_cif interface_;
};

/// The 8 bytes of a host's slot: numbers are extended by their sign or with zeros.
struct Slot {
  std::uint64_t bits = 0;
  Ref<Counted> counted;  ///< the object behind the handle in `bits`; nil for other values
};

/// Who owns a handle that a plugin passes to the host.
enum class Ownership {
  kBorrowed,    ///< the plugin keeps its reference
  kHandedOver,  ///< the host takes the plugin's reference
};

/// Converts the value to `type`; strings and arrays become objects of the runtime. The plugin is given no reference.
/// Throws ValueError.
Slot toSlot(Runtime& runtime, const Value& value, const DeclaredType& type);
/// The value in the first bytes at `address`, as many as the type is wide. `where` names the place in a fault.
Value fromSlot(Runtime& runtime, const void* address, const DeclaredType& type, Ownership ownership, const char* where);

}  // namespace devhost
