// Plugin: a loaded library, its modules, and calls of their methods by name. One thread at a time.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devhost/calling/module_record.h"
#include "devhost/calling/native_call.h"

namespace devhost {

/// Borrows the runtime, and may be copied.
class Plugin {
 public:
  /// Loads the library and lets it register. Throws PluginError.
  Plugin(Runtime& runtime, std::string path);

  const std::string& path() const { return path_; }
  /// What it passed to "RegisterPluginVersion"; 0 when it did not call that.
  std::int64_t announcedVersion() const { return announced_version_; }
  /// In the order of registration; at least one.
  const std::vector<Module>& modules() const { return modules_; }
  const Module& module() const { return modules_.front(); }

  /// The method of that name, case-insensitive; null when no module has it. Borrowed; valid while this lives.
  const Method* findMethod(std::string_view name) const;

  /// Calls a method, as callFunction does. Throws ValueError for an unknown one, too.
  CallResult call(std::string_view method, const Values& arguments = {}) const;

  /// An exported symbol; null when there is none.
  void* symbol(const char* name) const;

 private:
  void loadLibrary();
  void letRegister();

  Runtime* runtime_;
  std::string path_;
  void* library_ = nullptr;  // never closed: a plugin's threads and objects live as long as the process
  std::int64_t announced_version_ = 0;
  std::vector<Module> modules_;
};

}  // namespace devhost
