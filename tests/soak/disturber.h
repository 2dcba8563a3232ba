// Changes the soak's desktop: outputs go off and on, move and become the main one; user-defined monitors come, go and
// move; a profile file comes and goes; colord restarts. Made on a thread that lives as long as the servers; changes
// come from one thread at a time.
#pragma once

#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "soak/world.h"
#include "support/private_colord.h"
#include "support/xorg_server.h"

namespace soak {

class Disturber {
 public:
  struct Counts {
    std::size_t outputs = 0;
    std::size_t monitors = 0;
    std::size_t files = 0;
    std::size_t restarts = 0;
    std::size_t fewest = SIZE_MAX;  ///< displays at a time
    std::size_t most = 0;
    std::vector<std::string> not_restored;  ///< displays whose profile was not back in time after a restart
  };

  /// Starts the servers, writes this many files, and makes 16 outputs that are on and 48 monitors without an output.
  /// The process's environment leads to them.
  explicit Disturber(std::size_t profiles);

  World& world() { return *world_; }
  const Counts& counts() const { return counts_; }

  /// Makes changes until `over`.
  void run(Clock::duration restart_interval, const std::atomic<bool>& over);

 private:
  void makeOutputs();
  void makeMonitors();
  std::vector<Shown> readDisplays();
  void changeOutput();
  void changeMonitor();
  void changeFiles();
  void restartColord(const std::atomic<bool>& over);
  bool hasItsProfile(std::size_t output);
  std::size_t choose(std::size_t count) { return random_() % count; }

  support::PrivateColord colord_;
  support::XorgServer server_;
  std::map<std::string, std::uint32_t> numbers_;  ///< of displays, by the name that xrandr shows
  std::unique_ptr<World> world_;
  std::array<bool, kOutputs> on_{};
  std::vector<bool> defined_;
  std::array<std::string, kOutputs> devices_;  ///< colord's identifiers, empty until they are read
  Counts counts_;
  std::mt19937 random_{7919};
};

}  // namespace soak
