// The live displays of a Wayland compositor; see server_displays.h for limits and losses. Any thread may call.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "desktop/model/export.h"
#include "desktop/model/server_displays.h"

namespace platform::desktop {

struct WaylandOptions {
  std::optional<std::string> socket;  ///< its path; absent: waylandSocket() at each attempt
  std::chrono::milliseconds time_limit{2000};
  std::chrono::milliseconds pause_after_failure{200};
};

class PLATFORM_API WaylandDisplays : public ServerDisplays {
 public:
  explicit WaylandDisplays(const WaylandOptions& options = {});

  /// Whether the compositor of the last reading gives its outputs' names and areas in points. An older one leaves the
  /// connectors unknown and rounds the scales up to whole numbers.
  bool isModern() const { return *modern_; }

 private:
  WaylandDisplays(const WaylandOptions& options, std::shared_ptr<std::atomic<bool>> modern);

  std::shared_ptr<std::atomic<bool>> modern_;  ///< written by a thread that may outlive this object
};

/// The path that WAYLAND_DISPLAY names, in XDG_RUNTIME_DIR unless it is absolute; empty without these variables.
PLATFORM_API std::string waylandSocket();

/// The number of times that this process has waited for a compositor's reply. It does not grow while nothing changes.
PLATFORM_API std::uint64_t waylandRoundTrips();

}  // namespace platform::desktop
