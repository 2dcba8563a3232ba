// Operation: a sequence of asynchronous GLib calls with one time limit, written as if they were synchronous.
//
// An operation belongs to the thread that owns its main context. While it waits, it runs that context, and with it
// everything else that the context serves.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "desktop/colord/glib_refs.h"

namespace platform::desktop {

/// An asynchronous call. It may be dropped before it ends.
struct PendingCall {
  ObjectRef<GAsyncResult> result;  ///< null until the call has ended
};

class Operation {
 public:
  using Clock = std::chrono::steady_clock;
  /// Starts one asynchronous call with the three arguments that every such call ends in.
  using Start = std::function<void(GCancellable*, GAsyncReadyCallback, gpointer)>;

  /// `context` is the calling thread's own default context and outlives the operation.
  Operation(GMainContext* context, Clock::time_point deadline);
  /// Cancels every pending call.
  ~Operation();
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  /// True from the deadline on. Pending calls are cancelled then, and later ones are not waited for.
  bool expired() const;

  std::shared_ptr<PendingCall> start(const Start& start) const;
  /// Borrowed, valid while `call` lives; null when the operation expired first.
  GAsyncResult* wait(const std::shared_ptr<PendingCall>& call) const;
  /// Waits until `condition` holds; false when the operation expired first.
  bool waitUntil(const std::function<bool()>& condition) const;
  /// Waits for that long; false when the operation expired first.
  bool pause(std::chrono::milliseconds time) const;

 private:
  static gboolean expire(gpointer self);
  static void complete(GObject* source, GAsyncResult* result, gpointer data);

  GMainContext* context_;
  Clock::time_point deadline_;
  ObjectRef<GCancellable> cancellable_;
  GSource* alarm_;
};

}  // namespace platform::desktop
