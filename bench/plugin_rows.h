// The plugin's methods by their rows, as a host that has read the module record calls them.
#pragma once

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "devhost/runtime/autorelease.h"
#include "host/records.h"

namespace bench {

/// The plugin that the program is linked to, registered once per process. As a host it offers what the methods of one
/// display need, at as little cost as there can be: a string is a NUL-terminated copy.
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

  /// An exported function by its mangled name.
  template <typename Function>
  Function* symbol(const char* name) const {
    void* const found = dlsym(library_, name);
    if (found == nullptr) {
      throw std::runtime_error(dlerror());
    }
    return reinterpret_cast<Function*>(found);
  }

  static char* makeString(const char* bytes, int length, unsigned /*encoding*/) {
    const auto size = static_cast<std::size_t>(length);
    auto* const copy = static_cast<char*>(std::malloc(size + 1));
    std::memcpy(copy, bytes, size);
    copy[size] = '\0';
    return copy;
  }
  static void releaseString(char* string) { std::free(string); }

 private:
  PluginRows() : library_(dlopen(OSTREVIN_LIBRARY_NAME, RTLD_NOW | RTLD_NOLOAD)) {
    if (library_ == nullptr) {
      throw std::runtime_error(dlerror());
    }
    devhost::findAutoreleasePools(library_);
    symbol<void(void* (*)(const char*))>("REALPluginMain")(resolve);
  }

  static const REALmoduleDefinition*& module() {
    static const REALmoduleDefinition* registered = nullptr;
    return registered;
  }

  static void announce(int) {}
  static void registerModule(const REALmoduleDefinition* record) { module() = record; }
  static const char* contents(const char* string) { return string; }

  static void* resolve(const char* name) {
    const std::string_view entry = name;
    if (entry == "RegisterPluginVersion") {
      return reinterpret_cast<void*>(&announce);
    }
    if (entry == "PluginRegisterModule") {
      return reinterpret_cast<void*>(&registerModule);
    }
    if (entry == "REALBuildStringWithEncoding") {
      return reinterpret_cast<void*>(&makeString);
    }
    if (entry == "REALUnlockString") {
      return reinterpret_cast<void*>(&releaseString);
    }
    return entry == "StringGetCString" ? reinterpret_cast<void*>(&contents) : nullptr;
  }

  void* const library_;
};

}  // namespace bench
