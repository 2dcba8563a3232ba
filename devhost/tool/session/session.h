// One run of the tool: the host, the plugin in it, and what the options ask for.
#pragma once

#include <string>

#include "devhost/entries/host.h"

namespace devhost::tool {

/// The tool's exit status; --help and docs/json.md repeat it.
enum ExitStatus : int {
  kDone = 0,
  kNotDone = 1,     ///< a negative result, such as a missing tag or a finding of doctor; or the plugin cannot be loaded
  kWrongUsage = 2,  ///< an unusable option, method, argument or desktop file
  kUnreleased = 3,  ///< --check found something
};

struct Options {
  bool json = false;
  bool check = false;
  std::string plugin_path;  ///< empty: the tool's own
  std::string desktop;      ///< empty: chosen by the environment
};

/// Constructed after chooseDesktop().
class Session {
 public:
  /// Throws PluginError.
  explicit Session(const Options& options);

  Host& host() { return host_; }
  const Plugin& plugin() const { return plugin_; }
  bool json() const { return options_.json; }

  /// Prints one line on the standard error output, made printable.
  static void say(const std::string& line);

  /// Returns `status`; with --check, prints what was not released and returns kUnreleased for it.
  int finish(int status) const;

 private:
  Options options_;
  Host host_;
  Plugin plugin_;
};

}  // namespace devhost::tool
