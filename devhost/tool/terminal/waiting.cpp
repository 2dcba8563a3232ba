#include "devhost/tool/terminal/waiting.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "devhost/language/printable.h"
#include "devhost/tool/terminal/terminal.h"

namespace devhost::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSilence(500);
// Around a line that the terminal cuts at its margin: a line that it wraps could not be cleared.
constexpr const char* kNoWrap = "\x1b[?7l";
constexpr const char* kWrap = "\x1b[?7h";

std::atomic<bool> is_shown = false;
std::atomic<bool> ends_with_success = false;

void endProcess(int signal) {
  if (is_shown) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kClearLine, sizeof kClearLine - 1);
  }
  if (ends_with_success) {
    _exit(EXIT_SUCCESS);
  }
  std::signal(signal, SIG_DFL);
  raise(signal);  // delivered when this handler returns
}

void handle(int signal, struct sigaction& before) {
  sigaction(signal, nullptr, &before);
  if (before.sa_handler == SIG_IGN) {
    return;
  }
  ends_with_success = before.sa_handler != SIG_DFL;
  struct sigaction action {};
  action.sa_handler = endProcess;
  sigaction(signal, &action, nullptr);
}

/// Shows a line that is not withdrawn in time, on a thread that ends with the process.
class DelayedLine {
 public:
  DelayedLine() { std::thread(&DelayedLine::run, this).detach(); }

  void set(std::string line) {
    const std::lock_guard lock(mutex_);
    line_ = std::move(line);
    due_ = Clock::now() + kSilence;
    ++number_;
    changed_.notify_one();
  }

  void withdraw() {
    const std::lock_guard lock(mutex_);
    if (is_shown) {
      std::fputs(kClearLine, stderr);
      is_shown = false;
    }
    line_.clear();
    ++number_;
    changed_.notify_one();
  }

 private:
  [[noreturn]] void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [this] { return !line_.empty(); });
      const unsigned shown_number = number_;
      const auto other = [&] { return number_ != shown_number; };
      if (!changed_.wait_until(lock, due_, other)) {
        is_shown = true;
        std::fprintf(stderr, "\r%s%s%s", kNoWrap, line_.c_str(), kWrap);
        changed_.wait(lock, other);
      }
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::string line_;  ///< empty when nothing is waited for
  Clock::time_point due_;
  unsigned number_ = 0;
};

/// Null without a terminal.
DelayedLine* delayedLine() {
  static auto* const line = isatty(STDERR_FILENO) == 1 ? new DelayedLine : nullptr;
  return line;
}

}  // namespace

Waiting::Waiting(const std::string& what) {
  handle(SIGINT, interrupt_before_);
  handle(SIGTERM, terminate_before_);
  if (DelayedLine* const line = delayedLine()) {
    line->set("ostrevin-host: waiting for " + printable(what) + "; Ctrl-C ends it");
  }
}

Waiting::~Waiting() {
  if (DelayedLine* const line = delayedLine()) {
    line->withdraw();
  }
  sigaction(SIGINT, &interrupt_before_, nullptr);
  sigaction(SIGTERM, &terminate_before_, nullptr);
}

}  // namespace devhost::tool
