#include "desktop/x11/x11_connection.h"

#include <algorithm>
#include <atomic>

namespace platform::desktop {
namespace {

std::atomic<std::uint64_t> round_trips{0};

}  // namespace

std::uint64_t X11Connection::roundTrips() { return round_trips; }

void X11Connection::countRoundTrip() { ++round_trips; }

std::unique_ptr<X11Connection> X11Connection::open(const std::string& display) {
  int screen_number = 0;
  std::unique_ptr<X11Connection> connection(new X11Connection(xcb_connect(display.c_str(), &screen_number)));
  return !connection->isLost() && connection->chooseScreen(screen_number) ? std::move(connection) : nullptr;
}

X11Connection::~X11Connection() { xcb_disconnect(connection_); }

bool X11Connection::chooseScreen(int number) {
  screen_number_ = number;
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
  for (int index = 0; screens.rem > 0; ++index, xcb_screen_next(&screens)) {
    if (index == 0) {
      first_root_ = screens.data->root;
    }
    if (index == number) {
      root_ = screens.data->root;
    }
  }
  return root_ != XCB_WINDOW_NONE;
}

std::vector<xcb_atom_t> X11Connection::atoms(const std::vector<std::string>& names) {
  std::vector<xcb_intern_atom_cookie_t> cookies;
  cookies.reserve(names.size());
  for (const std::string& name : names) {
    cookies.push_back(xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
  }
  std::vector<xcb_atom_t> atoms;
  for (const xcb_intern_atom_cookie_t cookie : cookies) {
    const auto atom = reply(xcb_intern_atom_reply, cookie);
    atoms.push_back(atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE});
  }
  return atoms;
}

std::span<const std::uint8_t> propertyBytes(const xcb_get_property_reply_t& property) {
  const auto received = payload(property);
  return received.first(property.format == kByteFormat ? std::min<std::size_t>(property.value_len, received.size())
                                                       : 0);
}

}  // namespace platform::desktop
