#include "desktop/model/server_displays.h"

#include <exception>
#include <utility>

#include "desktop/model/detached_thread.h"

namespace platform::desktop {

ServerDisplays::ServerDisplays(ServerOptions options) : options_(std::move(options)) {}

ServerDisplays::~ServerDisplays() = default;

std::shared_ptr<const Arrangement> ServerDisplays::arrangement() {
  const auto found = find();
  return found ? found : none_;
}

std::shared_ptr<const Arrangement> ServerDisplays::find() {
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

bool ServerDisplays::needsReading() {
  if (session_) {
    const bool changed = session_->hasChanged();
    if (!session_->isLost()) {
      return changed;
    }
    session_.reset();
    current_.reset();
  }
  address_ = options_.address();
  return !address_.empty() && Clock::now() >= next_attempt_;
}

void ServerDisplays::startReading() {
  deadline_ = Clock::now() + options_.time_limit;
  try {
    reading_ = runDetached([session = std::move(session_), address = address_, open = options_.open]() mutable {
      Reading result;
      try {
        result.session = session ? std::move(session) : open(address);
        result.arrangement = result.session ? result.session->readDisplays() : nullptr;
      } catch (const std::exception&) {  // out of memory: as if there were no server
        result.arrangement.reset();
      }
      if (!result.arrangement) {
        result.session.reset();
      }
      return result;
    });
  } catch (const std::exception&) {
    current_.reset();
    next_attempt_ = Clock::now() + options_.pause_after_failure;
  }
}

bool ServerDisplays::finishReading() {
  if (reading_.wait_until(deadline_) != std::future_status::ready) {
    return false;
  }
  Reading result = reading_.get();
  session_ = std::move(result.session);
  current_ = std::move(result.arrangement);
  if (!session_) {
    next_attempt_ = Clock::now() + options_.pause_after_failure;
  }
  return true;
}

}  // namespace platform::desktop
