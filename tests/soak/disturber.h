// Changes the world while the plugin is being called: outputs go off and on, move, and become the main one; monitors
// that the user defined come, go and move; a profile file appears and goes away; colord restarts. One thread, which
// must live as long as the servers.
#pragma once

#include <functional>
#include <memory>
#include <random>
#include <string>

#include "soak/world.h"
#include "support/private_colord.h"
#include "support/xorg_server.h"

namespace soak {

class Disturber {
 public:
  /// Starts the servers and writes the files: 16 outputs that are on, and 48 monitors that are no outputs.
  explicit Disturber(Plan& plan);

  World& world() { return *world_; }
  const support::XorgServer& server() const { return server_; }

  struct Counts {
    std::size_t outputs = 0;
    std::size_t monitors = 0;
    std::size_t files = 0;
    std::size_t restarts = 0;
    std::size_t fewest = 0;  ///< displays at a time
    std::size_t most = 0;
    std::vector<std::string> not_restored;  ///< displays that had not their profile back in time, after a restart
  };
  const Counts& counts() const { return counts_; }

  void changeOutput();
  void changeMonitor();
  void changeFiles();
  /// Waits until every output has its profile back, unless the calls are over: then nobody is left who would give them
  /// back.
  void restartColord(const std::function<bool()>& is_over);

 private:
  struct Place {
    int width;
    int height;
    int x;
    int y;
  };
  static Place outputPlace(std::size_t output, bool moved);
  static std::string monitorArea(std::size_t monitor, bool moved);

  void numberMonitors(Plan& plan);
  Arrangement readArrangement();
  void countDisplays();
  void waitForProfiles(const std::function<bool()>& is_over);
  bool hasItsProfile(std::size_t output);
  std::size_t choose(std::size_t count) { return random_() % count; }

  support::PrivateColord colord_;
  support::XorgServer server_;
  std::unique_ptr<World> world_;
  std::map<std::string, std::uint32_t> numbers_;  ///< of displays, by the name that xrandr shows
  std::array<bool, kOutputs> on_{};
  std::vector<bool> defined_;
  std::array<std::string, kOutputs> devices_;  ///< colord's identifiers, once known
  bool extra_ = false;
  Counts counts_;
  std::mt19937 random_{7919};
};

}  // namespace soak
