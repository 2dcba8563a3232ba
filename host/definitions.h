// What the definition records of classes and controls say, and how to change it. No call reaches the host.
//
// Any thread, one record at a time.
#pragma once

#include <cstdint>

#include "host/records.h"

namespace host {

/// `instance` plus `offset` bytes, for any instance: the sum is computed as a number, so null is no special case.
inline void* addOffset(void* instance, std::int64_t offset) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): arithmetic on a null pointer is not defined.
  return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(instance) + static_cast<std::uintptr_t>(offset));
}

}  // namespace host

/// Where the plugin's own data begins in an instance of the class. Borrowed; `definition` must not be null.
inline void* REALGetClassData(void* instance, const REALclassDefinition* definition) {
  return host::addOffset(instance, definition->dataOffset);
}

/// Where the plugin's own data begins in an instance of the control. Borrowed; `definition` must not be null.
inline void* REALGetControlData(void* instance, const REALcontrolDefinition* definition) {
  return host::addOffset(instance, definition->dataOffset);
}

/// Marks the class as usable in programs without windows, and returns `definition`, which must not be null.
inline REALclassDefinition* SetClassConsoleSafe(REALclassDefinition* definition) {
  definition->flags |= kClassIsConsoleSafe;
  return definition;
}

/// Marks the class as usable on the web only, and returns `definition`, which must not be null. One other flag goes.
inline REALclassDefinition* SetClassWebOnly(REALclassDefinition* definition) {
  definition->flags = (definition->flags | kClassIsWebOnly) & ~kClassIsClearedByWebOnly;
  return definition;
}
