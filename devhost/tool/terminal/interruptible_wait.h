// Waiting that ends early at SIGINT, at SIGTERM, and when the reader of the standard output closes it. One thread, one
// object at a time.
#pragma once

#include <chrono>
#include <csignal>

namespace devhost::tool {

/// While it exists, SIGINT and SIGTERM end waits instead of the process, and writing to a closed pipe fails instead of
/// ending the process.
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
