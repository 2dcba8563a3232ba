// The host's types: its handles, and the records that it reads in place, as raw memory (version 13 of its interface, in
// its 64-bit layout).
//
// Handles are opaque, owned by the host, and used only through the host calls of this folder, on the host's thread. A
// record is constant-initialised, writable data that is complete before the host sees it and lives as long as the
// library. All records are aggregates; members left out of an initialiser are zero, which means "absent" to the host.
#pragma once

#include <cstddef>
#include <cstdint>

// --- Handles

struct REALstringStruct;        ///< A string, counted by the host and tagged with its text encoding.
struct REALobjectStruct;        ///< An object: an instance of a class, a variant, a control, a picture and so on.
struct REALarrayStruct;         ///< A one-dimensional array.
struct REALclassRefStruct;      ///< A reference to a class.
struct RuntimeText;             ///< A text value.
struct REALpictureDescription;  ///< The record that describes the memory of a locked picture.

// The system's records for files; passed on by address only.
struct FSRef;
struct HFSUniStr255;

// --- Records

/// The version of the host's interface that the records and the host calls follow.
inline constexpr std::int64_t kHostInterfaceVersion = 13;

/// A function with any parameters; the declaration beside it lists them.
using REALfunction = void (*)();

/// One method: what the host calls, and how the host's language declares it.
struct REALmethodDefinition {
  REALfunction function = nullptr;        ///< Takes exactly the declared parameters, without an instance.
  REALfunction secondFunction = nullptr;  ///< Unused.
  const char* declaration = nullptr;      ///< NUL-terminated.
  std::int64_t otherFields[3] = {};       ///< Unused.
};

static_assert(offsetof(REALmethodDefinition, function) == 0);
static_assert(offsetof(REALmethodDefinition, secondFunction) == 8);
static_assert(offsetof(REALmethodDefinition, declaration) == 16);
static_assert(offsetof(REALmethodDefinition, otherFields) == 24);
static_assert(sizeof(REALmethodDefinition) == 48);

/// A module: its name and its table of methods.
struct REALmoduleDefinition {
  std::int64_t version = 0;
  const char* name = nullptr;               ///< NUL-terminated.
  REALmethodDefinition* methods = nullptr;  ///< `methodCount` rows, one after the other.
  std::int64_t methodCount = 0;
  std::int64_t otherFields[20] = {};  ///< Constants, properties and other declarations; unused.
};

static_assert(offsetof(REALmoduleDefinition, version) == 0);
static_assert(offsetof(REALmoduleDefinition, name) == 8);
static_assert(offsetof(REALmoduleDefinition, methods) == 16);
static_assert(offsetof(REALmoduleDefinition, methodCount) == 24);
static_assert(offsetof(REALmoduleDefinition, otherFields) == 32);
static_assert(sizeof(REALmoduleDefinition) == 192);

/// The bits of a class's flags that the host calls change.
inline constexpr std::uint32_t kClassIsConsoleSafe = 0x4;
inline constexpr std::uint32_t kClassIsClearedByWebOnly = 0x8;  ///< Its meaning is the host's.
inline constexpr std::uint32_t kClassIsWebOnly = 0x100;

/// A class, as far as its fields are used here. The host's record is longer: this type reads one, and cannot make one.
struct REALclassDefinition {
  std::int64_t fieldsBeforeDataOffset[4] = {};
  std::int64_t dataOffset = 0;  ///< Bytes from the start of an instance to the plugin's own data in it.
  std::int64_t fieldsBeforeFlags[15] = {};
  std::uint32_t flags = 0;
};

static_assert(offsetof(REALclassDefinition, dataOffset) == 32 && sizeof(REALclassDefinition::dataOffset) == 8);
static_assert(offsetof(REALclassDefinition, flags) == 160 && sizeof(REALclassDefinition::flags) == 4);
static_assert(sizeof(REALclassDefinition) == 168);

/// A control, as far as its fields are used here; the host's record is longer, as a class's is.
struct REALcontrolDefinition {
  std::int64_t fieldsBeforeDataOffset[13] = {};
  std::int64_t dataOffset = 0;  ///< Bytes from the start of an instance to the plugin's own data in it.
};

static_assert(offsetof(REALcontrolDefinition, dataOffset) == 104 && sizeof(REALcontrolDefinition::dataOffset) == 8);
static_assert(sizeof(REALcontrolDefinition) == 112);

// --- Definition records. No call reaches the host. Any thread, one record at a time.

namespace host {

/// `instance` plus `offset` bytes, for any instance: the sum is computed as a number, so null needs no check.
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

/// Marks the class as usable on the web only, and returns `definition`, which must not be null. Clears one other flag.
inline REALclassDefinition* SetClassWebOnly(REALclassDefinition* definition) {
  definition->flags = (definition->flags | kClassIsWebOnly) & ~kClassIsClearedByWebOnly;
  return definition;
}
