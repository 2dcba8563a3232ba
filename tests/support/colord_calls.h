// ColordCalls: the calls of colord on the system bus, as the bus reports them.
//
// The bus is the one that DBUS_SYSTEM_BUS_ADDRESS names. It must run as the user of the test, who may then monitor it.
#pragma once

#include <memory>

struct _GAsyncQueue;
struct _GDBusConnection;

namespace support {

class ColordCalls {
 public:
  /// Watches from now on. Throws std::runtime_error when the bus does not admit it.
  ColordCalls();
  ~ColordCalls();
  ColordCalls(const ColordCalls&) = delete;
  ColordCalls& operator=(const ColordCalls&) = delete;

  /// Returns after a call of colord, with or without a reply. Throws std::runtime_error after 30 seconds.
  void waitForOne();

 private:
  /// What the connection's own thread has seen. GLib's, like the thread: ThreadSanitizer sees into neither.
  std::shared_ptr<_GAsyncQueue> seen_;
  std::shared_ptr<_GDBusConnection> connection_;
};

}  // namespace support
