#include "desktop/colord/glib_thread.h"

#include "desktop/model/detached_thread.h"

namespace platform::desktop {
GlibThread::GlibThread(std::function<void(GMainContext*)> when_idle)
    : when_idle_(std::move(when_idle)), context_(g_main_context_new()) {
  runDetached([this] { run(); });
}

void GlibThread::post(Operation::Clock::time_point deadline, Work work) {
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back({deadline, std::move(work)});
  }
  g_main_context_wakeup(context_);
}

std::optional<GlibThread::Request> GlibThread::next() {
  const std::lock_guard lock(mutex_);
  if (requests_.empty()) {
    return std::nullopt;
  }
  Request request = std::move(requests_.front());
  requests_.pop_front();
  return request;
}

void GlibThread::run() {
  g_main_context_push_thread_default(context_);
  for (;;) {
    when_idle_(context_);
    // The context must not run between next() and the wait: that would consume the wake-up of a request that arrives in
    // between.
    if (const auto request = next()) {
      request->work(Operation(context_, request->deadline));
    } else {
      g_main_context_iteration(context_, TRUE);
    }
  }
}

}  // namespace platform::desktop
