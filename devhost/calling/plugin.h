// Plugin: a loaded library, its modules, and calls of their methods by name. One thread at a time.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "devhost/calling/call_result.h"
#include "devhost/calling/module_record.h"

namespace devhost {

class Host;
class NativeSignature;

/// Borrows the host that loaded it, and may be copied.
class Plugin {
 public:
  const std::string& path() const { return path_; }
  /// What it passed to "RegisterPluginVersion"; 0 when it did not call that.
  std::int64_t announcedVersion() const { return announced_version_; }
  /// In the order of registration; at least one.
  const std::vector<Module>& modules() const { return modules_; }
  const Module& module() const { return modules_.front(); }

  /// The method of that name, letters' case aside; null when no module has it. Borrowed; valid while this lives.
  const Method* findMethod(std::string_view name) const;

  /// Calls a method. `arguments` are one for each parameter, or one for each parameter that is not by reference. The
  /// result and what by-reference parameters hold belong to the host. Throws ValueError (one line that says what was
  /// expected) for an unknown method, a wrong count or a wrong type, and whatever the method throws.
  CallResult call(std::string_view method, const Values& arguments = {}) const;

  /// An exported symbol; null when there is none.
  void* symbol(const char* name) const;

 private:
  friend class Host;
  Plugin(Host& host, std::string path);

  void loadLibrary();
  void letRegister();

  Host* host_;
  std::string path_;
  void* library_ = nullptr;  // never closed: a plugin's threads and what it keeps live as long as the process
  std::int64_t announced_version_ = 0;
  std::vector<Module> modules_;
};

}  // namespace devhost
