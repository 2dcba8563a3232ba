// The live displays of an X server: an arrangement that is cached until the server reports a change. Any thread may
// call.
//
// While nothing changes, a call makes no request. Readings run on a detached thread, one at a time, and a call waits
// for one at most for the time limit. While a server hangs there are no displays, and later calls do not wait; a late
// reply is used.
//
// Without a server, or after its loss, there are no displays. A call then tries to connect, but not within the pause
// after a failure.
#pragma once

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

struct X11Options {
  std::optional<std::string> display;    ///< absent: the value of DISPLAY at each attempt
  std::uint32_t newest_randr_minor = 5;  ///< the newest version 1.x of RandR to use
  std::chrono::milliseconds time_limit{2000};
  std::chrono::milliseconds pause_after_failure{200};
};

class X11Session;

class PLATFORM_API X11Displays {
 public:
  explicit X11Displays(X11Options options = {});
  ~X11Displays();

  /// Never null.
  std::shared_ptr<const Arrangement> arrangement();

 private:
  struct Reading {
    std::unique_ptr<X11Session> session;  ///< null: no server
    std::shared_ptr<const Arrangement> arrangement;
  };

  static Reading read(std::unique_ptr<X11Session> session, const std::string& display,
                      std::uint32_t newest_randr_minor);
  bool needsReading();
  void startReading();
  bool finishReading();

  const X11Options options_;
  const std::shared_ptr<const Arrangement> none_;
  std::mutex mutex_;  ///< for everything below
  std::shared_ptr<const Arrangement> current_;
  std::unique_ptr<X11Session> session_;             ///< null without a server, and while the detached thread has it
  std::future<Reading> reading_;                    ///< valid while a thread looks at the server
  std::chrono::steady_clock::time_point deadline_;  ///< until which calls wait for `reading_`
  std::string display_;                             ///< the server to connect to
  std::chrono::steady_clock::time_point next_attempt_;
};

/// The number of requests with a reply that this process has made to X servers, failed ones included. It does not grow
/// while nothing changes on the server.
PLATFORM_API std::uint64_t x11RoundTrips();

}  // namespace platform::desktop
