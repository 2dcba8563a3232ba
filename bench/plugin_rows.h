// The plugin's methods by their rows, as a host that has read the module record calls them.
#pragma once

#include <dlfcn.h>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/records.h"

namespace bench {

/// Loads the plugin once per process and keeps it.
class PluginRows {
 public:
  static const PluginRows& instance() {
    static const PluginRows rows;
    return rows;
  }

  /// The function of the method whose declaration begins with `name` and a parenthesis.
  template <typename Function>
  Function* method(std::string_view name) const {
    for (std::int64_t i = 0; i < module()->methodCount; ++i) {
      const std::string_view declaration = module()->methods[i].declaration;
      if (declaration.substr(0, name.size()) == name && declaration.substr(name.size(), 1) == "(") {
        return reinterpret_cast<Function*>(module()->methods[i].function);
      }
    }
    throw std::runtime_error("no method " + std::string(name));
  }

 private:
  PluginRows() {
    void* const library = dlopen(OSTREVIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
      throw std::runtime_error(dlerror());
    }
    reinterpret_cast<void (*)(void* (*)(const char*))>(dlsym(library, "REALPluginMain"))(resolve);
  }

  static const REALmoduleDefinition*& module() {
    static const REALmoduleDefinition* registered = nullptr;
    return registered;
  }

  static void announce(int) {}
  static void registerModule(const REALmoduleDefinition* record) { module() = record; }
  static void* resolve(const char* name) {
    if (std::strcmp(name, "RegisterPluginVersion") == 0) {
      return reinterpret_cast<void*>(&announce);
    }
    if (std::strcmp(name, "PluginRegisterModule") == 0) {
      return reinterpret_cast<void*>(&registerModule);
    }
    return nullptr;
  }
};

}  // namespace bench
