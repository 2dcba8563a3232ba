// ColordCalls: the calls of colord on the system bus, as the bus reports them.
//
// The bus is the one that DBUS_SYSTEM_BUS_ADDRESS names. It must run as the user of the test, who may then monitor it.
#pragma once

#include <memory>
#include <string>
#include <vector>

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
  /// The calls up to now, each as its method and its object's path within colord: "GetAll /devices/first". Throws
  /// std::runtime_error when colord does not reply.
  std::vector<std::string> take();

 private:
  /// The next call, which may have to be waited for.
  std::string next();

  /// Of texts, which the connection's own thread adds. GLib's, like the thread: ThreadSanitizer sees into neither.
  std::shared_ptr<_GAsyncQueue> seen_;
  std::shared_ptr<_GDBusConnection> connection_;
};

}  // namespace support
