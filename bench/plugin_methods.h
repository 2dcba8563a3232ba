// The plugin's methods as a host calls them: by the rows of the module record.
#pragma once

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "devhost/calling/native_call.h"
#include "host/records.h"

extern "C" void REALPluginMain(void* (*resolver)(const char*));

namespace bench {

/// A host that has only what the methods of one display need, and costs as little as a host can: a string is a
/// NUL-terminated copy.
namespace host_entries {

inline const REALmoduleDefinition* module = nullptr;

inline char* makeString(const char* bytes, int length, unsigned /*encoding*/) {
  const auto size = static_cast<std::size_t>(length);
  auto* const copy = static_cast<char*>(std::malloc(size + 1));
  std::memcpy(copy, bytes, size);
  copy[size] = '\0';
  return copy;
}
inline void releaseString(char* string) { std::free(string); }
inline const char* contents(const char* string) { return string; }
inline void announce(int /*version*/) {}
inline void registerModule(const REALmoduleDefinition* record) { module = record; }

inline void* resolve(const char* name) {
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

}  // namespace host_entries

/// The function of the method whose declaration begins with `name` and a parenthesis. Registers the plugin once.
template <typename Function>
Function* pluginMethod(std::string_view name) {
  if (host_entries::module == nullptr) {
    devhost::findAutoreleasePools(nullptr);
    REALPluginMain(host_entries::resolve);
  }
  const REALmoduleDefinition& module = *host_entries::module;
  for (std::int64_t i = 0; i < module.methodCount; ++i) {
    const std::string_view declaration = module.methods[i].declaration;
    if (declaration.starts_with(name) && declaration.substr(name.size(), 1) == "(") {
      return reinterpret_cast<Function*>(module.methods[i].function);
    }
  }
  throw std::runtime_error("no method " + std::string(name));
}

}  // namespace bench
