// One run of the tool: the host, the plugin in it, and what the options ask for.
#pragma once

#include <string>

#include "devhost/entries/host.h"

namespace devhost::tool {

struct Options {
  bool json = false;
  bool check = false;
  std::string plugin_path;  ///< empty: the one that comes with the tool
  std::string desktop;      ///< empty: as the environment says
};

/// To be made after the desktop was chosen.
class Session {
 public:
  /// Throws PluginError.
  explicit Session(const Options& options);

  Host& host() { return host_; }
  const Plugin& plugin() const { return plugin_; }
  bool json() const { return options_.json; }

  /// One line on the standard error output, made printable.
  static void say(const std::string& line);

  /// `status`, or what --check makes of it after it has said what it found.
  int finish(int status) const;

 private:
  Options options_;
  Host host_;
  Plugin plugin_;
};

}  // namespace devhost::tool
