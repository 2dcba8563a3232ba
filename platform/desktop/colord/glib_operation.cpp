#include "desktop/colord/glib_operation.h"

#include <algorithm>

namespace platform::desktop {

Operation::Operation(GMainContext* context, Clock::time_point deadline)
    : context_(context), deadline_(deadline), cancellable_(g_cancellable_new()) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  alarm_ = g_timeout_source_new(static_cast<guint>(std::max<std::int64_t>(left.count(), 0)));
  g_source_set_callback(alarm_, expire, this, nullptr);
  g_source_attach(alarm_, context_);
}

Operation::~Operation() {
  g_cancellable_cancel(cancellable_.get());
  g_source_destroy(alarm_);
  g_source_unref(alarm_);
}

gboolean Operation::expire(gpointer self) {
  g_cancellable_cancel(static_cast<Operation*>(self)->cancellable_.get());
  return G_SOURCE_REMOVE;
}

bool Operation::expired() const {
  return g_cancellable_is_cancelled(cancellable_.get()) != FALSE || Clock::now() >= deadline_;
}

void Operation::complete(GObject*, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<std::shared_ptr<PendingCall>> call(static_cast<std::shared_ptr<PendingCall>*>(data));
  (*call)->result = retained(result);
}

std::shared_ptr<PendingCall> Operation::start(const Start& start) const {
  auto call = std::make_shared<PendingCall>();
  // The call's own share, because it may end long after the operation.
  auto* const share = new std::shared_ptr<PendingCall>(call);
  start(cancellable_.get(), complete, share);
  return call;
}

GAsyncResult* Operation::wait(const std::shared_ptr<PendingCall>& call) const {
  waitUntil([&] { return call->result != nullptr; });
  return call->result.get();
}

bool Operation::waitUntil(const std::function<bool()>& condition) const {
  while (!condition()) {
    if (expired()) {
      return false;
    }
    g_main_context_iteration(context_, TRUE);
  }
  return true;
}

bool Operation::pause(std::chrono::milliseconds time) const {
  Operation(context_, Clock::now() + time).waitUntil([] { return false; });
  return !expired();
}

}  // namespace platform::desktop
