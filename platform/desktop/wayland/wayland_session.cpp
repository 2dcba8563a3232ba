#include "desktop/wayland/wayland_session.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-client.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "xdg-output-unstable-v1-client-protocol.h"

namespace platform::desktop {
namespace {

constexpr std::uint32_t kNewestOutput = 4;
constexpr std::uint32_t kNewestLogicalOutput = 3;
constexpr std::uint32_t kHasDone = 2;            // wl_output
constexpr std::uint32_t kHasRelease = 3;         // wl_output
constexpr std::uint32_t kHasName = 4;            // wl_output
constexpr std::uint32_t kLogicalHasName = 2;     // zxdg_output_v1
constexpr std::uint32_t kLogicalSharesDone = 3;  // zxdg_output_v1: wl_output.done replaces its own event

/// Requests for more outputs at once could exceed libwayland's buffer of 4096 bytes, which ends the connection.
constexpr std::size_t kOutputsAtOnce = 16;
/// More are ignored.
constexpr std::size_t kMostOutputs = 4096;
/// Readings of the socket in one call, 4096 bytes each; what has arrived beyond is left to the next call.
constexpr int kMostReads = 64;
constexpr int kMostReadings = 10;

std::atomic<std::uint64_t> round_trips{0};

/// A socket that is connected to the path, or -1. libwayland would take the socket of the variable WAYLAND_SOCKET,
/// which is the host's, and print a message where there is none.
int connectTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.empty() || path.size() >= sizeof(address.sun_path)) {
    return -1;
  }
  std::memcpy(address.sun_path, path.data(), path.size());
  const int socket_fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket_fd >= 0 && connect(socket_fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
    close(socket_fd);
    return -1;
  }
  return socket_fd;
}

}  // namespace

/// An announced output, its objects, and the state that the compositor's events describe. A state counts once the
/// compositor has declared it complete; older versions of the interfaces cannot do so.
class WaylandSession::Output {
 public:
  Output(Global global, bool& changed) : global_(global), changed_(changed) {}
  ~Output() {
    if (logical_ != nullptr) {
      zxdg_output_v1_destroy(logical_);
    }
    if (output_ != nullptr) {
      wl_output_get_version(output_) >= kHasRelease ? wl_output_release(output_) : wl_output_destroy(output_);
    }
  }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  std::uint32_t name() const { return global_.name; }
  std::uint32_t version() const { return std::min(global_.version, kNewestOutput); }
  bool isComplete() const { return complete_; }
  const WaylandOutput& state() const { return state_; }
  bool is_removed = false;

  /// Whether there are objects to be made.
  bool needsObjects(zxdg_output_manager_v1* manager) const {
    return output_ == nullptr || (logical_ == nullptr && manager != nullptr);
  }

  void makeObjects(wl_registry* registry, zxdg_output_manager_v1* manager) {
    if (output_ == nullptr) {
      output_ = static_cast<wl_output*>(wl_registry_bind(registry, global_.name, &wl_output_interface, version()));
      pending_.id = global_.name;
      if (output_ != nullptr) {
        wl_output_add_listener(output_, &outputListener(), this);
      }
    }
    if (output_ != nullptr && logical_ == nullptr && manager != nullptr) {
      logical_ = zxdg_output_manager_v1_get_xdg_output(manager, output_);
      if (logical_ != nullptr) {
        zxdg_output_v1_add_listener(logical_, &logicalListener(), this);
      }
    }
  }

 private:
  static Output& of(void* data) { return *static_cast<Output*>(data); }

  void publish() {
    state_ = pending_;
    complete_ = true;
    changed_ = true;
  }

  /// After an event that no other one completes.
  void publishUnless(bool completes_later) {
    if (!completes_later) {
      publish();
    }
  }
  bool hasDone() const { return version() >= kHasDone; }
  bool logicalSharesDone() const { return hasDone() && zxdg_output_v1_get_version(logical_) >= kLogicalSharesDone; }

  static const wl_output_listener& outputListener();
  static const zxdg_output_v1_listener& logicalListener();

  const Global global_;
  bool& changed_;
  wl_output* output_ = nullptr;
  zxdg_output_v1* logical_ = nullptr;
  WaylandOutput pending_;
  WaylandOutput state_;
  bool complete_ = false;
};

// libwayland ends the process when a compositor sends an event that has no function here, so that none may be missing.
static_assert(sizeof(wl_output_listener) == 6 * sizeof(void (*)()));
static_assert(sizeof(zxdg_output_v1_listener) == 5 * sizeof(void (*)()));
static_assert(sizeof(wl_registry_listener) == 2 * sizeof(void (*)()));

const wl_output_listener& WaylandSession::Output::outputListener() {
  static constexpr wl_output_listener kListener{
      .geometry =
          [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t, std::int32_t,
             const char* make, const char* model, std::int32_t transform) {
            Output& output = of(data);
            output.pending_.x = x;
            output.pending_.y = y;
            output.pending_.make = make;
            output.pending_.model = model;
            output.pending_.transform = transform;
            output.publishUnless(output.hasDone());
          },
      .mode =
          [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height, std::int32_t) {
            Output& output = of(data);
            if ((flags & WL_OUTPUT_MODE_CURRENT) != 0) {
              output.pending_.mode_width = width;
              output.pending_.mode_height = height;
              output.publishUnless(output.hasDone());
            }
          },
      .done = [](void* data, wl_output*) { of(data).publish(); },
      .scale = [](void* data, wl_output*, std::int32_t scale) { of(data).pending_.scale = scale; },
      .name = [](void* data, wl_output*, const char* name) { of(data).pending_.name = name; },
      .description = [](void* data, wl_output*,
                        const char* description) { of(data).pending_.description = description; }};
  return kListener;
}

const zxdg_output_v1_listener& WaylandSession::Output::logicalListener() {
  static constexpr zxdg_output_v1_listener kListener{
      .logical_position =
          [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
            of(data).pending_.logical_x = x;
            of(data).pending_.logical_y = y;
          },
      .logical_size =
          [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
            of(data).pending_.has_logical_area = true;
            of(data).pending_.logical_width = width;
            of(data).pending_.logical_height = height;
            of(data).publishUnless(of(data).hasDone());
          },
      .done = [](void* data, zxdg_output_v1*) { of(data).publishUnless(of(data).logicalSharesDone()); },
      .name = [](void* data, zxdg_output_v1*, const char* name) { of(data).pending_.name = name; },
      .description = [](void* data, zxdg_output_v1*,
                        const char* description) { of(data).pending_.description = description; }};
  return kListener;
}

const wl_registry_listener& WaylandSession::registryListener() {
  static constexpr wl_registry_listener kListener{
      .global = [](void* data, wl_registry*, std::uint32_t name, const char* interface,
                   std::uint32_t version) { static_cast<WaylandSession*>(data)->announce(name, interface, version); },
      .global_remove = [](void* data, wl_registry*,
                          std::uint32_t name) { static_cast<WaylandSession*>(data)->remove(name); }};
  return kListener;
}

WaylandSession::WaylandSession(wl_display* display) : display_(display) {}

std::unique_ptr<WaylandSession> WaylandSession::open(const std::string& socket_path) {
  const int socket_fd = connectTo(socket_path);
  if (socket_fd < 0) {
    return nullptr;
  }
  wl_display* const display = wl_display_connect_to_fd(socket_fd);
  if (display == nullptr) {  // libwayland has closed the socket
    return nullptr;
  }
  std::unique_ptr<WaylandSession> session(new WaylandSession(display));
  session->registry_ = wl_display_get_registry(display);
  if (session->registry_ == nullptr) {
    return nullptr;
  }
  wl_registry_add_listener(session->registry_, &registryListener(), session.get());
  return session->roundTrip() ? std::move(session) : nullptr;
}

WaylandSession::~WaylandSession() {
  outputs_.clear();
  if (manager_ != nullptr) {
    zxdg_output_manager_v1_destroy(manager_);
  }
  if (registry_ != nullptr) {
    wl_registry_destroy(registry_);
  }
  wl_display_disconnect(display_);
}

void WaylandSession::announce(std::uint32_t name, const std::string& interface, std::uint32_t version) {
  if (interface == wl_output_interface.name && outputs_.size() < kMostOutputs && version != 0) {
    outputs_.push_back(std::make_unique<Output>(Global{name, version}, changed_));
    changed_ = true;
  } else if (interface == zxdg_output_manager_v1_interface.name && manager_ == nullptr && version != 0) {
    announced_manager_ = Global{name, version};
    changed_ = true;
  }
}

void WaylandSession::remove(std::uint32_t name) {
  for (const auto& output : outputs_) {
    if (output->name() == name) {
      output->is_removed = true;
      changed_ = true;
    }
  }
}

// wl_display_roundtrip of libwayland 1.23 never returns where a connection ends within a message.
bool WaylandSession::roundTrip() {
  static constexpr wl_callback_listener kListener{
      .done = [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
  ++round_trips;
  bool done = false;
  wl_callback* const callback = wl_display_sync(display_);
  if (callback == nullptr) {
    return false;
  }
  wl_callback_add_listener(callback, &kListener, &done);
  while (!done && dispatch(-1)) {
  }
  wl_callback_destroy(callback);
  return done && !isLost();
}

bool WaylandSession::dispatch(int milliseconds) {
  if (isLost()) {
    return false;
  }
  if (wl_display_prepare_read(display_) != 0) {  // there are events that have been read
    return wl_display_dispatch_pending(display_) >= 0;
  }
  const bool all_sent = wl_display_flush(display_) >= 0;
  lost_ = !all_sent && errno != EAGAIN;
  pollfd socket{.fd = wl_display_get_fd(display_), .events = POLLIN, .revents = 0};
  if (!all_sent) {
    socket.events |= POLLOUT;
  }
  const int ready = lost_ ? 0 : poll(&socket, 1, milliseconds);
  const bool readable = ready > 0 && (socket.revents & ~POLLOUT) != 0;
  int bytes = 0;
  if (readable) {  // without any bytes, the connection has ended
    lost_ = ioctl(socket.fd, FIONREAD, &bytes) != 0 || bytes == 0;
  }
  if (lost_ || !readable) {
    wl_display_cancel_read(display_);
    return !lost_ && ready != 0;
  }
  return wl_display_read_events(display_) >= 0 && wl_display_dispatch_pending(display_) >= 0;
}

void WaylandSession::bindManager() {
  if (manager_ != nullptr || !announced_manager_) {
    return;
  }
  manager_version_ = std::min(announced_manager_->version, kNewestLogicalOutput);
  manager_ = static_cast<zxdg_output_manager_v1*>(
      wl_registry_bind(registry_, announced_manager_->name, &zxdg_output_manager_v1_interface, manager_version_));
}

bool WaylandSession::bindOutputs() {
  std::erase_if(outputs_, [](const auto& output) { return output->is_removed; });
  bindManager();
  std::vector<Output*> unbound;  // a round trip may announce more outputs
  for (const auto& output : outputs_) {
    if (output->needsObjects(manager_)) {
      unbound.push_back(output.get());
    }
  }
  std::size_t made = 0;
  for (Output* const output : unbound) {
    output->makeObjects(registry_, manager_);
    if (++made % kOutputsAtOnce == 0 && !roundTrip()) {
      return false;
    }
  }
  return roundTrip();
}

bool WaylandSession::isBound() const {
  return (manager_ != nullptr || !announced_manager_) &&
         std::none_of(outputs_.begin(), outputs_.end(),
                      [&](const auto& output) { return output->is_removed || output->needsObjects(manager_); });
}

std::optional<std::vector<WaylandOutput>> WaylandSession::read() {
  int reading = 0;
  do {
    if (!bindOutputs()) {
      return std::nullopt;
    }
  } while (!isBound() && ++reading < kMostReadings);
  changed_ = !isBound();
  std::vector<WaylandOutput> outputs;
  for (const auto& output : outputs_) {
    if (output->isComplete() && !output->is_removed) {
      outputs.push_back(output->state());
    }
  }
  return outputs;
}

bool WaylandSession::hasChanged() {
  for (int reads = 0; reads < kMostReads && dispatch(0); ++reads) {
  }
  return changed_;
}

bool WaylandSession::isLost() const { return lost_ || wl_display_get_error(display_) != 0; }

std::uint32_t WaylandSession::outputVersion() const {
  const auto oldest = std::min_element(outputs_.begin(), outputs_.end(), [](const auto& left, const auto& right) {
    return left->version() < right->version();
  });
  return oldest == outputs_.end() ? 0 : (*oldest)->version();
}

bool WaylandSession::isModern() const {
  return manager_version_ != 0 && (manager_version_ >= kLogicalHasName || outputVersion() >= kHasName);
}

std::uint64_t WaylandSession::roundTrips() { return round_trips; }

}  // namespace platform::desktop
