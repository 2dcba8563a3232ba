// Host: a substitute for the host that a plugin is loaded into. It owns the values that plugins hold handles to, and
// the table of entries that they call.
//
//   devhost::Host host;
//   devhost::Plugin plugin = host.load("libSomething.so");
//   auto listener = host.makeObject("Listener");
//   listener->addMethod("Found( name as String )", [&](devhost::Object&, devhost::Values& arguments) -> devhost::Value
//   {
//     names.push_back(arguments[0].text());
//     return {};
//   });
//   plugin.call("SetListener", {listener});
//   auto answer = plugin.call("GetName", {1});
//   answer["name"].text();
//
// A plugin is given a plain function as its resolver, and entries are plain functions too. So there is one current host
// in the process: the one whose call is in progress, else the one made last. One thread at a time uses the hosts of a
// process.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/calling/plugin.h"
#include "devhost/entries/entry_table.h"
#include "devhost/language/value.h"
#include "devhost/runtime/arrays.h"
#include "devhost/runtime/global_methods.h"
#include "devhost/runtime/handles.h"
#include "devhost/runtime/objects.h"
#include "devhost/runtime/strings.h"

namespace devhost {

/// The address of the entry of that name, or null.
using Resolver = void* (*)(const char* name);

/// What a plugin told the host while it was loaded.
struct Registration {
  std::vector<std::int64_t> announced_versions;
  std::vector<const void*> module_records;
};

/// A method of an object, as a plugin asked for it.
struct MethodLookup {
  const void* object;  ///< the handle as given; may be null or stale
  std::string declaration;
};

class Host {
 public:
  /// Makes itself the current host.
  Host();
  /// What plugins still hold is freed. The host that was current before becomes so again.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// The host that entries act for. There must be one.
  static Host& current();
  /// What a plugin is given to find entries with: looks them up in the current host's table.
  static Resolver resolver();

  EntryTable& entries() { return entries_; }
  GlobalMethods& globalMethods() { return global_methods_; }

  /// Loads a plugin and lets it register. Throws PluginError. A plugin stays loaded for the life of the process.
  Plugin load(const std::string& path);

  Ref<String> makeString(std::string bytes, std::uint32_t encoding = kUtf8Encoding);
  Ref<Object> makeObject(std::string class_name = "Object");
  /// Throws ValueError when an element is not of the type.
  Ref<Array> makeArray(Type element_type, const Values& elements = {});

  /// One line for each reference that a plugin holds and should not: a string, object or array that it was given
  /// or built and neither released nor handed to the host. The host takes over what it gets as a result, through a
  /// by-reference parameter, as an element of an array and as an argument of an object's method.
  std::vector<std::string> unreleased() const;
  /// The same, strings only.
  std::vector<std::string> unreleasedStrings() const;
  /// One line for each thing that a plugin did wrong with a handle: released too often, unknown, of another kind.
  const std::vector<std::string>& faults() const { return handles_->faults(); }

  const std::vector<MethodLookup>& methodLookups() const { return method_lookups_; }
  /// Forgets look-ups, faults and what was registered; entries and values stay.
  void clearRecords();

  // For entries and calls.
  Handles& handles() { return *handles_; }
  Registration& registration() { return registration_; }
  void addMethodLookup(const void* object, const char* declaration);
  /// Keeps what an object's method threw until the plugin's method has returned.
  void holdException(std::exception_ptr exception);
  std::exception_ptr takeException() { return std::exchange(held_exception_, nullptr); }

 private:
  friend class CurrentHost;

  std::shared_ptr<Handles> handles_ = std::make_shared<Handles>();
  EntryTable entries_;
  GlobalMethods global_methods_;
  Registration registration_;
  std::vector<MethodLookup> method_lookups_;
  std::exception_ptr held_exception_;
  Host* previous_;
};

/// Makes a host the current one while it lives.
class CurrentHost {
 public:
  explicit CurrentHost(Host& host);
  ~CurrentHost();
  CurrentHost(const CurrentHost&) = delete;
  CurrentHost& operator=(const CurrentHost&) = delete;

 private:
  Host* previous_;
};

}  // namespace devhost
