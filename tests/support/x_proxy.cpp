#include "support/x_proxy.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace support {
namespace {

constexpr int kBacklog = 64;

struct Address {
  sockaddr_un address{};
  socklen_t size = sizeof(sockaddr_un);
};

Address addressOf(const std::filesystem::path& path) {
  Address result;
  result.address.sun_family = AF_UNIX;
  path.native().copy(result.address.sun_path, sizeof(result.address.sun_path) - 1);
  return result;
}

/// The abstract socket of a display, which clients try before the one in the file system; it leaves nothing behind.
Address abstractAddressOf(const std::string& display) {
  const std::string name = std::string(1, '\0') + "/tmp/.X11-unix/X" + display.substr(1);
  Address result;
  result.address.sun_family = AF_UNIX;
  name.copy(result.address.sun_path, sizeof(result.address.sun_path));
  result.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
  return result;
}

const sockaddr* generic(const Address& address) { return reinterpret_cast<const sockaddr*>(&address.address); }

int connectTo(const std::filesystem::path& path) {
  const Address address = addressOf(path);
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(fd, generic(address), address.size) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

bool sendAll(int fd, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t sent = send(fd, bytes, size, MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

using Buffer = std::array<char, 4096>;

}  // namespace

struct XProxy::Connection {
  Connection(int client_fd, int server_fd) : client(client_fd), server(server_fd) {}
  ~Connection() {
    close(client);
    if (server >= 0) {
      close(server);
    }
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  int client;
  int server;  ///< -1: none could be had
  std::uint64_t from_server = 0;
  bool deaf = false;
};

XProxy::XProxy(std::filesystem::path server_socket, Kind kind) : server_socket_(std::move(server_socket)) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::runtime_error("no pipe");
  }
  wake_read_ = ends[0];
  wake_write_ = ends[1];
  listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  kind == Kind::kDisplay ? listenAtAFreeDisplay() : listenAtPath();
  thread_ = std::thread([this] { serve(); });
}

void XProxy::listenAtAFreeDisplay() {
  constexpr int kFirst = 60000;  // far above the numbers that servers choose, and those that tests choose for servers
  constexpr int kCount = 10000;
  for (int attempt = 0; attempt < kCount; ++attempt) {
    display_ = ":" + std::to_string(kFirst + (getpid() + attempt) % kCount);
    const Address address = abstractAddressOf(display_);
    if (bind(listener_, generic(address), address.size) == 0 && listen(listener_, kBacklog) == 0) {
      return;
    }
  }
  throw std::runtime_error("no free display");
}

void XProxy::listenAtPath() {
  const Address address = addressOf(path());
  if (bind(listener_, generic(address), address.size) != 0 || listen(listener_, kBacklog) != 0) {
    throw std::runtime_error("no socket " + path());
  }
}

XProxy::~XProxy() {
  stopping_ = true;
  wake();
  thread_.join();
  close(listener_);
  close(wake_read_);
  close(wake_write_);
}

void XProxy::limit(std::uint64_t bytes, AtLimit at_limit) {
  at_limit_ = at_limit;
  limit_ = bytes;
  wake();
}

void XProxy::resume() { limit(std::numeric_limits<std::uint64_t>::max(), AtLimit::kClose); }

void XProxy::wake() const {
  const char byte = 0;
  [[maybe_unused]] const ssize_t ignored = write(wake_write_, &byte, 1);
}

void XProxy::serve() {
  while (!stopping_) {
    std::vector<pollfd> waiting{{wake_read_, POLLIN, 0}, {listener_, POLLIN, 0}};
    for (const auto& connection : open_) {
      const bool stalled = connection->from_server >= limit_ && at_limit_ == AtLimit::kStall;
      waiting.push_back({connection->deaf ? -1 : connection->client, POLLIN, 0});
      waiting.push_back({stalled ? -1 : connection->server, POLLIN, 0});
    }
    poll(waiting.data(), waiting.size(), -1);
    Buffer buffer;
    if (waiting[0].revents != 0) {
      [[maybe_unused]] const ssize_t ignored = read(wake_read_, buffer.data(), buffer.size());
    }
    for (std::size_t i = 0; i < open_.size(); ++i) {
      Connection& connection = *open_[i];
      const bool goes_on = (waiting[2 + 2 * i].revents == 0 || forwardFromClient(connection)) &&
                           (waiting[3 + 2 * i].revents == 0 || forwardFromServer(connection)) &&
                           (connection.from_server < limit_ || at_limit_ != AtLimit::kClose);
      if (!goes_on) {
        open_[i].reset();
      }
    }
    std::erase(open_, nullptr);
    if (waiting[1].revents != 0) {
      accept();
    }
  }
  open_.clear();
}

void XProxy::accept() {
  const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  if (client < 0) {
    return;
  }
  ++connections_;
  auto connection = std::make_unique<Connection>(client, connectTo(server_socket_));
  if (connection->server >= 0) {
    open_.push_back(std::move(connection));
  }
}

bool XProxy::forwardFromClient(Connection& connection) {
  Buffer buffer;
  const ssize_t count = read(connection.client, buffer.data(), buffer.size());
  if (count <= 0) {
    return false;
  }
  bytes_from_clients_ += static_cast<std::uint64_t>(count);
  return sendAll(connection.server, buffer.data(), static_cast<std::size_t>(count));
}

bool XProxy::forwardFromServer(Connection& connection) {
  Buffer buffer;
  const std::uint64_t before = connection.from_server;
  const std::uint64_t left = limit_ > before ? limit_ - before : connection.deaf ? buffer.size() : 0;
  const ssize_t count = read(connection.server, buffer.data(), std::min<std::uint64_t>(left, buffer.size()));
  if (count <= 0) {
    return left == 0;
  }
  connection.from_server += static_cast<std::uint64_t>(count);
  most_bytes_from_server_ = std::max<std::uint64_t>(most_bytes_from_server_, connection.from_server);
  if (at_limit_ == AtLimit::kDeaf && connection.from_server >= limit_) {
    shutdown(connection.client, SHUT_RD);  // before the client can reply to these bytes
    connection.deaf = true;
  }
  return sendAll(connection.client, buffer.data(), static_cast<std::size_t>(count));
}

}  // namespace support
