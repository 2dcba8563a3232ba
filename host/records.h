// The records that the host reads in place, as raw memory: version 13 of the host's interface, in its 64-bit layout.
//
// A record is constant-initialised, writable data that is complete before the host sees it and lives as long as the
// library. All types are aggregates; members left out of an initialiser are zero, which means "absent" to the host.
#pragma once

#include <cstddef>
#include <cstdint>

/// The version of the host's interface that the records and the host calls follow.
inline constexpr std::int64_t kHostInterfaceVersion = 13;

/// Any function, whatever its parameters; the declaration beside it says what they are.
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
  std::int64_t otherFields[20] = {};  ///< Constants, properties and whatever else a module may declare; unused.
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

/// A class, as far as its fields are used here. The host's record goes on after the last one, so this type describes a
/// record that somebody else laid out; it is no template for making one.
struct REALclassDefinition {
  std::int64_t fieldsBeforeDataOffset[4] = {};
  std::int64_t dataOffset = 0;  ///< Bytes from the start of an instance to the plugin's own data in it.
  std::int64_t fieldsBeforeFlags[15] = {};
  std::uint32_t flags = 0;
};

static_assert(offsetof(REALclassDefinition, dataOffset) == 32 && sizeof(REALclassDefinition::dataOffset) == 8);
static_assert(offsetof(REALclassDefinition, flags) == 160 && sizeof(REALclassDefinition::flags) == 4);
static_assert(sizeof(REALclassDefinition) == 168);

/// A control, as far as its fields are used here; the host's record goes on, as a class's does.
struct REALcontrolDefinition {
  std::int64_t fieldsBeforeDataOffset[13] = {};
  std::int64_t dataOffset = 0;  ///< Bytes from the start of an instance to the plugin's own data in it.
};

static_assert(offsetof(REALcontrolDefinition, dataOffset) == 104 && sizeof(REALcontrolDefinition::dataOffset) == 8);
static_assert(sizeof(REALcontrolDefinition) == 112);
