#include "desktop/x11/x11_displays.h"

#include <cstdlib>
#include <exception>
#include <utility>

#include "desktop/model/detached_thread.h"
#include "desktop/x11/x11_session.h"

namespace platform::desktop {

using Clock = std::chrono::steady_clock;

X11Displays::X11Displays(X11Options options)
    : options_(std::move(options)), none_(std::make_shared<const Arrangement>()), current_(none_) {}

X11Displays::~X11Displays() = default;

/// Waits for the server without a limit.
X11Displays::Reading X11Displays::read(std::unique_ptr<X11Session> session, const std::string& display,
                                       std::uint32_t newest_randr_minor) {
  try {
    if (!session) {
      session = X11Session::open(display, newest_randr_minor);
    }
    if (const auto read = session ? session->read() : std::nullopt) {
      return {std::move(session), std::make_shared<const Arrangement>(arrange(read->monitors, read->scale))};
    }
  } catch (const std::exception&) {  // out of memory: as if there were no server
  }
  return {};
}

std::shared_ptr<const Arrangement> X11Displays::arrangement() {
  const std::lock_guard lock(mutex_);
  if (reading_.valid() && !finishReading()) {
    return none_;
  }
  if (needsReading()) {
    startReading();
    if (reading_.valid() && !finishReading()) {
      return none_;
    }
  }
  return current_;
}

bool X11Displays::needsReading() {
  if (session_) {
    const bool changed = session_->hasChanged();
    if (!session_->isLost()) {
      return changed;
    }
    session_.reset();
    current_ = none_;
  }
  if (Clock::now() < next_attempt_) {
    return false;
  }
  const char* const from_environment = std::getenv("DISPLAY");
  display_ = options_.display.value_or(from_environment == nullptr ? "" : from_environment);
  return !display_.empty();
}

void X11Displays::startReading() {
  deadline_ = Clock::now() + options_.time_limit;
  try {
    reading_ = runDetached([session = std::move(session_), display = display_,
                            newest_randr_minor = options_.newest_randr_minor]() mutable {
      return read(std::move(session), display, newest_randr_minor);
    });
  } catch (const std::exception&) {
    current_ = none_;
    next_attempt_ = Clock::now() + options_.pause_after_failure;
  }
}

bool X11Displays::finishReading() {
  if (reading_.wait_until(deadline_) != std::future_status::ready) {
    return false;
  }
  Reading result = reading_.get();
  session_ = std::move(result.session);
  current_ = session_ ? result.arrangement : none_;
  if (!session_) {
    next_attempt_ = Clock::now() + options_.pause_after_failure;
  }
  return true;
}

std::uint64_t x11RoundTrips() { return X11Connection::roundTrips(); }

}  // namespace platform::desktop
