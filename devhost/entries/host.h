// Host: a substitute for the host that a plugin is loaded into.
//
//   devhost::Host host;
//   devhost::Plugin plugin = host.load("libSomething.so");
//   auto listener = host.makeObject("Listener");
//   host.addMethod(*listener, "Found( name as String )", [&](devhost::Object&, devhost::Values& arguments) {
//     names.push_back(arguments[0].text());
//     return devhost::Value();
//   });
//   plugin.call("SetListener", {listener});
//   auto result = plugin.call("GetName", {1});
//   result["name"].text();
//
// One thread at a time.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "devhost/calling/native_call.h"
#include "devhost/calling/plugin.h"
#include "devhost/runtime/runtime.h"

namespace devhost {

/// A runtime with the entries that plugins call, which the table in host.cpp lists one a line.
class Host : public Runtime {
 public:
  Host();

  /// Loads a plugin and lets it register. Throws PluginError. A plugin stays loaded for the life of the process.
  Plugin load(const std::string& path) { return {*this, path}; }
  /// Adds a method that a plugin can find and call, or replaces the one of the same signature. Throws DeclarationError.
  void addMethod(Object& object, std::string_view declaration, Handler handler) {
    devhost::addMethod(*this, object, declaration, std::move(handler));
  }
};

}  // namespace devhost
