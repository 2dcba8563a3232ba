// Environment variables for the length of a test.
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace support {

/// Sets variables (nullopt: removes them) and restores them in the destructor.
class EnvironmentVariables {
 public:
  using Values = std::map<std::string, std::optional<std::string>>;

  explicit EnvironmentVariables(const Values& values) {
    for (const auto& [name, value] : values) {
      const char* const before = std::getenv(name.c_str());
      before_[name] = before != nullptr ? std::optional<std::string>(before) : std::nullopt;
      set(name, value);
    }
  }
  EnvironmentVariables(const EnvironmentVariables&) = delete;
  EnvironmentVariables& operator=(const EnvironmentVariables&) = delete;
  ~EnvironmentVariables() {
    for (const auto& [name, value] : before_) {
      set(name, value);
    }
  }

 private:
  static void set(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }

  Values before_;
};

/// Sets the user's language by these variables, and removes the others that could.
inline EnvironmentVariables userLanguage(EnvironmentVariables::Values values) {
  for (const char* const name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    values.try_emplace(name, std::nullopt);
  }
  return EnvironmentVariables(values);
}

}  // namespace support
