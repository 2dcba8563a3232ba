#include "desktop/x11/x11_displays.h"

#include <condition_variable>
#include <cstdlib>
#include <exception>
#include <thread>
#include <utility>

#include "desktop/x11/signals_blocked.h"
#include "desktop/x11/x11_session.h"

namespace platform::desktop {
namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

/// One look at the server, on a thread that may outlive whoever asked for it.
class X11Displays::Reading {
 public:
  struct Result {
    std::unique_ptr<X11Session> session;  ///< null: no server
    std::shared_ptr<const Arrangement> arrangement;
  };

  explicit Reading(Clock::time_point deadline) : deadline_(deadline) {}

  /// False when no thread can be had.
  static bool start(const std::shared_ptr<Reading>& reading, std::unique_ptr<X11Session> session,
                    const std::string& display, std::uint32_t newest_randr_minor) {
    const SignalsBlocked blocked;
    try {
      std::thread([reading, display, newest_randr_minor, session = std::move(session)]() mutable {
        reading->run(std::move(session), display, newest_randr_minor);
      }).detach();
      return true;
    } catch (const std::exception&) {
      return false;
    }
  }

  /// The result, once; nothing when it is not there by the deadline.
  std::optional<Result> wait() {
    std::unique_lock lock(mutex_);
    finished_.wait_until(lock, deadline_, [this] { return result_.has_value(); });
    return std::exchange(result_, std::nullopt);
  }

 private:
  void run(std::unique_ptr<X11Session> session, const std::string& display, std::uint32_t newest_randr_minor) {
    Result result;
    try {
      result.session = session ? std::move(session) : X11Session::open(display, newest_randr_minor);
      result.arrangement = result.session ? result.session->read() : nullptr;
      if (!result.arrangement) {
        result.session.reset();
      }
    } catch (const std::exception&) {  // out of memory: as if there were no server
      result = {};
    }
    const std::lock_guard lock(mutex_);
    result_ = std::move(result);
    finished_.notify_all();
  }

  const Clock::time_point deadline_;
  std::mutex mutex_;
  std::condition_variable finished_;
  std::optional<Result> result_;
};

X11Displays::X11Displays(X11Options options)
    : options_(std::move(options)), none_(std::make_shared<const Arrangement>()), current_(none_) {}

X11Displays::~X11Displays() = default;

std::shared_ptr<const Arrangement> X11Displays::arrangement() {
  const std::lock_guard lock(mutex_);
  if (reading_ && !finishReading()) {
    return none_;
  }
  if (needsReading()) {
    startReading();
    if (reading_ && !finishReading()) {
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
  const auto reading = std::make_shared<Reading>(Clock::now() + options_.time_limit);
  if (Reading::start(reading, std::move(session_), display_, options_.newest_randr_minor)) {
    reading_ = reading;
    return;
  }
  current_ = none_;
  next_attempt_ = Clock::now() + options_.pause_after_failure;
}

bool X11Displays::finishReading() {
  auto result = reading_->wait();
  if (!result) {
    return false;
  }
  reading_.reset();
  session_ = std::move(result->session);
  current_ = session_ ? result->arrangement : none_;
  if (!session_) {
    next_attempt_ = Clock::now() + options_.pause_after_failure;
  }
  return true;
}

}  // namespace platform::desktop
