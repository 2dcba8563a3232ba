// Detached threads, for work that may hang in a server's reply: neither a caller nor the process's exit waits for them.
#pragma once

#include <csignal>
#include <future>
#include <thread>
#include <type_traits>
#include <utility>

namespace platform::desktop {

/// Blocks every signal while it lives. A thread that is started meanwhile never takes one: signal handlers are the
/// host's, and a write to a closed connection fails there instead of raising SIGPIPE.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

/// Runs `work` on a new thread. The future gets its result or exception, and may be destroyed before. Throws
/// std::exception when no thread can be started.
template <typename Work>
std::future<std::invoke_result_t<Work>> runDetached(Work work) {
  std::packaged_task<std::invoke_result_t<Work>()> task(std::move(work));
  auto result = task.get_future();
  const SignalsBlocked blocked;
  std::thread(std::move(task)).detach();
  return result;
}

}  // namespace platform::desktop
