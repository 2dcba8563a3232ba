#include "desktop/x11/x11_displays.h"

#include <cstdlib>
#include <utility>

#include "desktop/x11/x11_session.h"

namespace platform::desktop {
namespace {

class Session final : public ServerSession {
 public:
  explicit Session(std::unique_ptr<X11Session> session) : session_(std::move(session)) {}

  std::shared_ptr<const Arrangement> readDisplays() override {
    const auto read = session_->read();
    return read ? std::make_shared<const Arrangement>(arrange(read->monitors, read->scale)) : nullptr;
  }
  bool hasChanged() override { return session_->hasChanged(); }
  bool isLost() const override { return session_->isLost(); }

 private:
  std::unique_ptr<X11Session> session_;
};

}  // namespace

X11Displays::X11Displays(const X11Options& options)
    : ServerDisplays(
          {.address =
               [display = options.display] {
                 const char* const from_environment = std::getenv("DISPLAY");
                 return display.value_or(from_environment == nullptr ? "" : from_environment);
               },
           .open = [minor = options.newest_randr_minor](const std::string& display) -> std::unique_ptr<ServerSession> {
             auto session = X11Session::open(display, minor);
             return session ? std::make_unique<Session>(std::move(session)) : nullptr;
           },
           .time_limit = options.time_limit,
           .pause_after_failure = options.pause_after_failure}) {}

std::uint64_t x11RoundTrips() { return X11Connection::roundTrips(); }

}  // namespace platform::desktop
