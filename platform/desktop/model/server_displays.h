// The live displays of a display server: an arrangement that is cached until the server reports a change. Any thread
// may call.
//
// While nothing changes, a call makes no request. Readings run on a detached thread, one at a time, and a call waits
// for one at most for the time limit. While a server hangs there are no displays, and later calls do not wait; a late
// reply is used.
//
// Without a server, or after its loss, there are no displays. A call then tries to connect, but not within the pause
// after a failure.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

namespace platform::desktop {

/// One connection to a display server. One thread at a time.
class ServerSession {
 public:
  virtual ~ServerSession() = default;

  /// The present displays. Waits for the server without a limit. Null when the connection is lost.
  virtual std::shared_ptr<const Arrangement> readDisplays() = 0;
  /// Whether the result of readDisplays() may have changed since. Looks only at events that have arrived: makes no
  /// request and does not wait.
  virtual bool hasChanged() = 0;
  /// Once true, every call fails.
  virtual bool isLost() const = 0;
};

struct ServerOptions {
  /// The server's address at each attempt; empty without a server. Called on the caller's thread.
  std::function<std::string()> address;
  /// Connects to the server at an address. Called on a detached thread, where it may wait without a limit. Null without
  /// a server.
  std::function<std::unique_ptr<ServerSession>(const std::string& address)> open;
  std::chrono::milliseconds time_limit{2000};
  std::chrono::milliseconds pause_after_failure{200};
};

class PLATFORM_API ServerDisplays {
 public:
  explicit ServerDisplays(ServerOptions options);
  ~ServerDisplays();

  /// Null without a server; without displays while the server does not reply.
  std::shared_ptr<const Arrangement> find();
  /// As find(), but without a server an arrangement without displays: never null.
  std::shared_ptr<const Arrangement> arrangement();

 private:
  using Clock = std::chrono::steady_clock;
  struct Reading {
    std::unique_ptr<ServerSession> session;  ///< null: no server
    std::shared_ptr<const Arrangement> arrangement;
  };

  bool needsReading();
  void startReading();
  bool finishReading();

  const ServerOptions options_;
  const std::shared_ptr<const Arrangement> none_ = std::make_shared<const Arrangement>();
  std::mutex mutex_;  ///< for everything below
  std::shared_ptr<const Arrangement> current_;
  std::unique_ptr<ServerSession> session_;  ///< null without a server, and while the detached thread has it
  std::future<Reading> reading_;            ///< valid while a thread looks at the server
  Clock::time_point deadline_;              ///< until which calls wait for `reading_`
  std::string address_;                     ///< of the server to connect to
  Clock::time_point next_attempt_;
};

}  // namespace platform::desktop
