#include "devhost/tool/terminal/interruptible_wait.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <stdexcept>

namespace devhost::tool {
namespace {

using Clock = std::chrono::steady_clock;

/// A pipe: the signal handler writes to the second end, and waits poll the first, so no signal is lost between two
/// waits.
std::array<int, 2> ends = {-1, -1};

void endWaits(int /*signal*/) {
  const int error = errno;
  [[maybe_unused]] const ssize_t written = write(ends[1], "", 1);
  errno = error;
}

void handle(int signal, void (*handler)(int), struct sigaction* before) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigaction(signal, &action, before);
}

}  // namespace

InterruptibleWait::InterruptibleWait() {
  if (pipe(ends.data()) != 0) {
    throw std::runtime_error("no descriptors left");
  }
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  handle(SIGINT, endWaits, &interrupt_before_);
  handle(SIGTERM, endWaits, &terminate_before_);
  handle(SIGPIPE, SIG_IGN, &pipe_before_);
}

InterruptibleWait::~InterruptibleWait() {
  sigaction(SIGINT, &interrupt_before_, nullptr);
  sigaction(SIGTERM, &terminate_before_, nullptr);
  sigaction(SIGPIPE, &pipe_before_, nullptr);
  close(ends[0]);
  close(ends[1]);
}

bool InterruptibleWait::wait(Clock::duration time) {
  const auto deadline = Clock::now() + time;
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    const int limit = static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
    // With no events requested, poll reports of the output only that its reader has closed it.
    std::array<pollfd, 2> watched{pollfd{ends[0], POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}};
    const int ready = poll(watched.data(), watched.size(), limit);
    if (ready > 0) {
      return false;
    }
    if (ready == 0 && limit == left) {
      return true;
    }
  }
}

}  // namespace devhost::tool
