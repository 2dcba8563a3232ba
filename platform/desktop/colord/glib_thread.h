// GlibThread: a thread with its own GLib main context, for calls with a time limit.
//
// All work of a GLib library (a call that hangs, a signal that arrives, a connection that closes) happens on this
// thread and context, and never on the host's.
#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>

#include "desktop/colord/glib_operation.h"

namespace platform::desktop {

/// Any thread may call call(), several at once; the thread does one piece of work after another. An instance is never
/// destroyed: its thread runs until the process ends.
class GlibThread {
 public:
  /// `when_idle` runs on the thread before every piece of work and after every event; it may start an Operation.
  explicit GlibThread(std::function<void(GMainContext*)> when_idle);
  GlibThread(const GlibThread&) = delete;
  GlibThread& operator=(const GlibThread&) = delete;

  /// Runs `work` on the thread, unless `limit` has passed before it is its turn. Gives its result, or nullopt.
  template <typename Result>
  std::future<std::optional<Result>> start(std::chrono::milliseconds limit,
                                           std::function<Result(const Operation&)> work) {
    const auto deadline = Operation::Clock::now() + limit;
    auto promise = std::make_shared<std::promise<std::optional<Result>>>();
    std::future<std::optional<Result>> future = promise->get_future();
    post(deadline, [promise, work = std::move(work)](const Operation& operation) {
      try {
        promise->set_value(operation.expired() ? std::nullopt : std::optional<Result>(work(operation)));
      } catch (const std::exception&) {
        promise->set_value(std::nullopt);
      }
    });
    return future;
  }

  /// Like start(), and waits for the result; returns nullopt after `limit`. The work may still run then, so it must own
  /// what it uses.
  template <typename Result>
  std::optional<Result> call(std::chrono::milliseconds limit, std::function<Result(const Operation&)> work) {
    auto result = start(limit, std::move(work));
    return result.wait_for(limit) == std::future_status::ready ? result.get() : std::nullopt;
  }

 private:
  using Work = std::function<void(const Operation&)>;
  struct Request {
    Operation::Clock::time_point deadline;
    Work work;
  };

  ~GlibThread() = default;
  void post(Operation::Clock::time_point deadline, Work work);
  std::optional<Request> next();
  [[noreturn]] void run();

  std::function<void(GMainContext*)> when_idle_;
  GMainContext* context_;
  std::mutex mutex_;
  std::deque<Request> requests_;
};

}  // namespace platform::desktop
