// A socket between clients and an X server or a compositor, through which a test makes the server cut a connection or
// hang anywhere, and counts their requests.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/temporary_folder.h"

namespace support {

/// Any thread may call any function.
class XProxy {
 public:
  enum class AtLimit {
    kClose,
    kStall,  ///< the connection hangs until resume()
    kDeaf,   ///< what the client writes from then on is refused; it still gets what the server sends
  };

  enum class Kind {
    kDisplay,  ///< an X display's socket; it has no path
    kFile,     ///< a socket file
  };

  explicit XProxy(std::filesystem::path server_socket, Kind kind = Kind::kDisplay);
  ~XProxy();
  XProxy(const XProxy&) = delete;
  XProxy& operator=(const XProxy&) = delete;

  /// What DISPLAY is for the proxy.
  const std::string& display() const { return display_; }
  /// The socket file.
  std::string path() const { return folder_.path("socket"); }
  /// From now on a connection gets this many bytes from the server, counted from its beginning; then that happens.
  void limit(std::uint64_t bytes, AtLimit at_limit);
  /// Removes the limit, from connections that hang as well.
  void resume();
  std::uint64_t bytesFromClients() const { return bytes_from_clients_; }
  /// The most bytes that one connection has received from the server.
  std::uint64_t mostBytesFromServer() const { return most_bytes_from_server_; }
  std::uint64_t connections() const { return connections_; }

 private:
  struct Connection;

  void listenAtAFreeDisplay();
  void listenAtPath();
  void serve();
  void accept();
  void wake() const;
  bool forwardFromClient(Connection& connection);
  bool forwardFromServer(Connection& connection);

  const std::filesystem::path server_socket_;
  TemporaryFolder folder_;
  std::string display_;
  int listener_ = -1;
  int wake_read_ = -1;
  int wake_write_ = -1;
  std::atomic<std::uint64_t> limit_{std::numeric_limits<std::uint64_t>::max()};
  std::atomic<AtLimit> at_limit_{AtLimit::kClose};
  std::atomic<bool> stopping_{false};
  std::atomic<std::uint64_t> bytes_from_clients_{0};
  std::atomic<std::uint64_t> most_bytes_from_server_{0};
  std::atomic<std::uint64_t> connections_{0};
  std::vector<std::unique_ptr<Connection>> open_;  ///< the serving thread's
  std::thread thread_;
};

}  // namespace support
