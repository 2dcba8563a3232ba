// Runtime: what a host keeps while plugins run. It has the objects behind the handles that plugins hold, the entries
// and global methods that they look up, and records of both.
//
// A plugin is given a plain function as its resolver, and entries are plain functions too. So there is one current
// runtime in the process: the one whose call is in progress, else the one made last. One thread at a time uses the
// runtimes of a process.
#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "devhost/runtime/objects.h"

namespace devhost {

/// The address of the entry of that name, or null.
using Resolver = void* (*)(const char* name);

/// The host entries: names, and the addresses that the resolver returns. Tests replace and remove some.
class EntryTable {
 public:
  template <typename Result, typename... Arguments>
  void set(std::string_view name, Result (*function)(Arguments...)) {
    set(name, reinterpret_cast<void*>(function));
  }
  void set(std::string_view name, void* function) { functions_[std::string(name)] = function; }
  void remove(std::string_view name) { functions_.erase(std::string(name)); }
  /// Null when there is none. Is not recorded as a look-up.
  void* find(std::string_view name) const;

  /// Finds the entry and records the look-up.
  void* resolve(const char* name);
  /// Every name that was looked up, in order, found or not.
  const std::vector<std::string>& lookups() const { return lookups_; }
  void clearLookups() { lookups_.clear(); }

 private:
  std::unordered_map<std::string, void*> functions_;
  std::vector<std::string> lookups_;
};

/// A method as a plugin looked it up.
struct MethodLookup {
  const void* owner;  ///< the object's handle, or a global method's module, as given; may be null or stale
  std::string declaration;
};

/// Methods of the host's language that belong to no object, such as "LenB( s as string ) as integer". A plugin loads
/// one by its declaration and calls it by address.
class GlobalMethods {
 public:
  /// Adds or replaces the method of that signature. Throws DeclarationError. The function must follow the declaration,
  /// except that Integer has 64 bits in the host's own methods.
  template <typename Result, typename... Arguments>
  void set(std::string_view declaration, Result (*function)(Arguments...)) {
    set(declaration, reinterpret_cast<void*>(function));
  }
  void set(std::string_view declaration, void* function);
  void remove(std::string_view declaration);

  /// Finds a method and records the look-up; null when there is none or the declaration cannot be parsed.
  void* load(const void* module, const char* declaration);
  const std::vector<MethodLookup>& lookups() const { return lookups_; }
  void clearLookups() { lookups_.clear(); }

 private:
  std::map<std::string, void*> functions_;  // by signature
  std::vector<MethodLookup> lookups_;
};

/// What a plugin registered while it was loaded.
struct Registration {
  std::vector<std::int64_t> announced_versions;
  std::vector<const void*> module_records;
};

class Runtime {
 public:
  /// Makes itself the current one.
  Runtime();
  /// Frees what plugins still hold. The runtime that was current before becomes current.
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  /// The one that entries act for. There must be one.
  static Runtime& current();
  /// What a plugin is given to find entries with: looks them up in the current table.
  static Resolver resolver();

  EntryTable& entries() { return entries_; }
  GlobalMethods& globalMethods() { return global_methods_; }
  Handles& handles() { return *handles_; }
  Registration& registration() { return registration_; }

  Ref<String> makeString(std::string bytes, std::uint32_t encoding = kUtf8Encoding);
  Ref<Array> makeArray(std::vector<Ref<String>> elements);
  Ref<Object> makeObject(std::string class_name = "Object");

  /// One line for each string, object or array that a plugin was given or built, and neither released nor handed to the
  /// host. The host takes over results, values stored through by-reference parameters, elements of arrays, and the
  /// arguments of objects' methods.
  std::vector<std::string> unreleased() const { return handles_->describeHeld(); }
  /// One line for each mistake of a plugin: a handle released too often, unknown, or of another kind.
  const std::vector<std::string>& faults() const { return handles_->faults(); }

  const std::vector<MethodLookup>& methodLookups() const { return method_lookups_; }
  void addMethodLookup(const void* object, const char* declaration);
  /// Forgets look-ups, faults and what was registered; entries and objects stay.
  void clearRecords();

  /// Keeps the first exception of an object's method until the plugin's method has returned.
  void holdException(std::exception_ptr exception);
  std::exception_ptr takeException() { return std::exchange(held_exception_, nullptr); }

 private:
  std::shared_ptr<Handles> handles_ = std::make_shared<Handles>();
  EntryTable entries_;
  GlobalMethods global_methods_;
  Registration registration_;
  std::vector<MethodLookup> method_lookups_;
  std::exception_ptr held_exception_;
  Runtime* previous_;
};

/// Makes a runtime the current one while it lives.
class CurrentRuntime {
 public:
  explicit CurrentRuntime(Runtime& runtime);
  ~CurrentRuntime();
  CurrentRuntime(const CurrentRuntime&) = delete;
  CurrentRuntime& operator=(const CurrentRuntime&) = delete;

 private:
  Runtime* previous_;
};

}  // namespace devhost
