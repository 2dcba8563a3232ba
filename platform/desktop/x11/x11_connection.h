// A connection to an X server, over xcb. The loss of the server is a state, and never ends the process.
//
// One thread at a time may use a connection. open() and reply() wait for the server without a limit, so they run on
// detached threads only (detached_thread.h).
#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace platform::desktop {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

/// A reply or an event, owned.
template <typename T>
using Received = std::unique_ptr<T, FreeMemory>;

/// The number of bytes of a reply that have arrived. xcb's iterators trust the counts in the reply instead.
template <typename Reply>
std::size_t receivedSize(const Reply& reply) {
  constexpr std::size_t kSmallestReply = 32;
  return kSmallestReply + std::size_t{reply.length} * 4;
}

/// The code of an event, which is the same for one that another client sent.
inline std::uint8_t eventCode(const xcb_generic_event_t& event) {
  constexpr std::uint8_t kSentEventBit = 0x80;
  return event.response_type & ~kSentEventBit;
}

/// The bytes that follow a reply's fixed part.
template <typename Reply>
std::span<const std::uint8_t> payload(const Reply& reply) {
  const auto* const begin = reinterpret_cast<const std::uint8_t*>(&reply);
  return std::span(begin, receivedSize(reply)).subspan(sizeof(Reply));
}

class X11Connection {
 public:
  /// Connects to the server and screen of a display name such as ":0". Null when there is none, or without access.
  static std::unique_ptr<X11Connection> open(const std::string& display);

  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  /// The number of replies that this process has asked for, on all connections.
  static std::uint64_t roundTrips();

  /// For requests; owned by this object.
  xcb_connection_t* xcb() const { return connection_; }
  /// Once true, every call fails.
  bool isLost() const { return xcb_connection_has_error(connection_) != 0; }

  int screenNumber() const { return screen_number_; }
  xcb_window_t root() const { return root_; }
  /// The root window of the server's first screen, which has the resource manager's property.
  xcb_window_t firstRoot() const { return first_root_; }

  /// Waits for the reply to a request; `get` is the request's reply function. Null for an error, and for a reply
  /// shorter than its fixed part.
  template <typename Reply, typename Cookie>
  Received<Reply> reply(Reply* (*get)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) {
    countRoundTrip();
    xcb_generic_error_t* error = nullptr;
    Received<Reply> result(get(connection_, cookie, &error));
    const Received<xcb_generic_error_t> failure(error);
    return result && receivedSize(*result) >= sizeof(Reply) ? std::move(result) : nullptr;
  }

  /// The atoms of these names, in their order, in one round trip; XCB_ATOM_NONE for a failure.
  std::vector<xcb_atom_t> atoms(const std::vector<std::string>& names);

  /// Owned by the connection; null when that is lost.
  const xcb_query_extension_reply_t* extension(xcb_extension_t& extension) {
    countRoundTrip();
    return xcb_get_extension_data(connection_, &extension);
  }

  /// The next event or error that has arrived, or null. Neither waits nor writes.
  Received<xcb_generic_event_t> nextEvent() { return Received<xcb_generic_event_t>(xcb_poll_for_event(connection_)); }

 private:
  explicit X11Connection(xcb_connection_t* connection) : connection_(connection) {}
  bool chooseScreen(int number);
  static void countRoundTrip();

  xcb_connection_t* const connection_;
  int screen_number_ = 0;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  xcb_window_t first_root_ = XCB_WINDOW_NONE;
};

/// The format of a property that is a sequence of bytes.
inline constexpr std::uint8_t kByteFormat = 8;

/// The bytes of a property; empty for one of another format.
std::span<const std::uint8_t> propertyBytes(const xcb_get_property_reply_t& property);

}  // namespace platform::desktop
