// The live displays of an X server: an arrangement that is kept until the server reports a change. Any thread may call.
//
// A call while nothing changes takes what has arrived from the server, and asks for nothing. Whatever has to wait for
// the server runs on a thread of its own, at most one at a time, and a call waits for that at most for the time limit.
// While a server hangs there are no displays and later calls do not wait again; once it goes on, what it answered
// counts.
//
// Without a server, or after one was lost, a call looks for the server again, but not before the pause after the last
// failure is over; until one is found there are no displays.
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
  std::optional<std::string> display;    ///< absent: what DISPLAY says whenever a server is looked for
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
  /// What one look at the server gives.
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
  std::unique_ptr<X11Session> session_;             ///< null without a server, and while `reading_` has it
  std::future<Reading> reading_;                    ///< valid while a thread looks at the server
  std::chrono::steady_clock::time_point deadline_;  ///< until which calls wait for `reading_`
  std::string display_;                             ///< the server to look for
  std::chrono::steady_clock::time_point next_attempt_;
};

/// The number of requests with a reply that this process has made to X servers, failed ones included. It does not grow
/// while nothing changes on the server.
PLATFORM_API std::uint64_t x11RoundTrips();

}  // namespace platform::desktop
