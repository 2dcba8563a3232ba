#include "desktop/wayland/wayland_displays.h"

#include <cstdlib>
#include <utility>

#include "desktop/model/connector.h"
#include "desktop/wayland/wayland_output.h"
#include "desktop/wayland/wayland_session.h"

namespace platform::desktop {
namespace {

class Session final : public ServerSession {
 public:
  Session(std::unique_ptr<WaylandSession> session, std::shared_ptr<std::atomic<bool>> modern)
      : session_(std::move(session)), modern_(std::move(modern)) {}

  std::shared_ptr<const Arrangement> readDisplays() override {
    const auto outputs = session_->read();
    if (!outputs) {
      return nullptr;
    }
    *modern_ = session_->isModern();
    return std::make_shared<const Arrangement>(arrange(monitorsOf(*outputs, connectorFolder()), 1));
  }
  bool hasChanged() override { return session_->hasChanged(); }
  bool isLost() const override { return session_->isLost(); }

 private:
  std::unique_ptr<WaylandSession> session_;
  std::shared_ptr<std::atomic<bool>> modern_;
};

std::string environmentText(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

WaylandDisplays::WaylandDisplays(const WaylandOptions& options)
    : WaylandDisplays(options, std::make_shared<std::atomic<bool>>(false)) {}

WaylandDisplays::WaylandDisplays(const WaylandOptions& options, std::shared_ptr<std::atomic<bool>> modern)
    : ServerDisplays({.address = [socket = options.socket] { return socket ? *socket : waylandSocket(); },
                      .open = [modern](const std::string& socket) -> std::unique_ptr<ServerSession> {
                        auto session = WaylandSession::open(socket);
                        return session ? std::make_unique<Session>(std::move(session), modern) : nullptr;
                      },
                      .time_limit = options.time_limit,
                      .pause_after_failure = options.pause_after_failure}),
      modern_(std::move(modern)) {}

std::string waylandSocket() {
  std::string name = environmentText("WAYLAND_DISPLAY");
  if (name.empty() || name.front() == '/') {
    return name;
  }
  const std::string folder = environmentText("XDG_RUNTIME_DIR");
  return folder.empty() ? std::string() : folder + '/' + name;
}

std::uint64_t waylandRoundTrips() { return WaylandSession::roundTrips(); }

}  // namespace platform::desktop
