// Waiting that ends early when the process is asked to end, or when nobody reads its output any more. One thread, one
// object at a time.
#pragma once

#include <chrono>
#include <csignal>

namespace devhost::tool {

/// While it lives, SIGINT and SIGTERM end waits instead of the process, and writing to a closed pipe is an error
/// instead of the end.
class InterruptibleWait {
 public:
  /// Throws std::runtime_error when the system is out of descriptors.
  InterruptibleWait();
  ~InterruptibleWait();
  InterruptibleWait(const InterruptibleWait&) = delete;
  InterruptibleWait& operator=(const InterruptibleWait&) = delete;

  /// True after the whole time; false as soon as the process is to end.
  bool wait(std::chrono::steady_clock::duration time);
  /// Whether the process is to end.
  bool isOver() { return !wait(std::chrono::steady_clock::duration::zero()); }

 private:
  struct sigaction interrupt_before_ {};
  struct sigaction terminate_before_ {};
  struct sigaction pipe_before_ {};
};

}  // namespace devhost::tool
