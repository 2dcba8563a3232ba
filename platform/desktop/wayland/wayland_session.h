// One connection to a Wayland compositor: its outputs, kept up to date by its events. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/wayland/wayland_output.h"

struct wl_display;
struct wl_registry;
struct wl_registry_listener;
struct zxdg_output_manager_v1;

namespace platform::desktop {

class WaylandSession {
 public:
  /// Connects to the compositor's socket and reads its globals. Waits without a limit. Null when there is none.
  static std::unique_ptr<WaylandSession> open(const std::string& socket_path);

  /// The number of times that this process has waited for a reply, on all connections.
  static std::uint64_t roundTrips();

  ~WaylandSession();
  WaylandSession(const WaylandSession&) = delete;
  WaylandSession& operator=(const WaylandSession&) = delete;

  /// The outputs that the compositor has described completely, in its order. Waits for the compositor without a limit.
  /// Nothing when the connection is lost.
  std::optional<std::vector<WaylandOutput>> read();

  /// Whether the result of read() may have changed since. Looks only at events that have arrived: makes no request and
  /// does not wait.
  bool hasChanged();

  bool isLost() const;

  /// The versions in use; 0 when the compositor lacks the interface.
  std::uint32_t outputVersion() const;
  std::uint32_t logicalVersion() const { return manager_version_; }

  /// Whether the compositor gives names and areas in points.
  bool isModern() const;

 private:
  class Output;
  struct Global {
    std::uint32_t name = 0;
    std::uint32_t version = 0;
  };

  explicit WaylandSession(wl_display* display);
  static const wl_registry_listener& registryListener();
  void announce(std::uint32_t name, const std::string& interface, std::uint32_t version);
  void remove(std::uint32_t name);
  bool roundTrip();
  /// Sends what is to be sent, waits for events for so long (-1: without a limit) and dispatches them. False when there
  /// are none and when the connection is lost.
  bool dispatch(int milliseconds);
  void bindManager();
  bool bindOutputs();
  bool isBound() const;

  wl_display* const display_;
  wl_registry* registry_ = nullptr;
  zxdg_output_manager_v1* manager_ = nullptr;
  std::uint32_t manager_version_ = 0;
  std::optional<Global> announced_manager_;
  std::vector<std::unique_ptr<Output>> outputs_;  ///< in the order of their announcement
  bool changed_ = true;                           ///< since the last reading
  bool lost_ = false;                             ///< beside libwayland's own errors
};

}  // namespace platform::desktop
