// Shows what is waited for, and lets Ctrl-C end the wait. One thread, one object at a time.
#pragma once

#include <csignal>
#include <string>

namespace devhost::tool {

/// Around a call that may take long. After half a second the terminal behind the standard error output, if there is
/// one, shows what is waited for. SIGINT and SIGTERM end the process: as they usually do, or with success where they
/// were the expected end of the command (InterruptibleWait).
class Waiting {
 public:
  /// `what` completes "waiting for".
  explicit Waiting(const std::string& what);
  /// Clears the line.
  ~Waiting();
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

 private:
  struct sigaction interrupt_before_ {};
  struct sigaction terminate_before_ {};
};

}  // namespace devhost::tool
