// Everything that is read from one connection to an X server. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "desktop/model/desktop.h"
#include "desktop/x11/x11_connection.h"
#include "desktop/x11/x11_monitors.h"
#include "desktop/x11/x11_settings.h"

namespace platform::desktop {

class X11Session {
 public:
  /// Waits for the server without a limit. Null when there is none.
  static std::unique_ptr<X11Session> open(const std::string& display, std::uint32_t newest_randr_minor);

  /// What the server says at this moment; waits for it without a limit. Null when the connection is lost.
  std::shared_ptr<const Arrangement> read();

  /// Whether anything that read() answered may have changed since. Only looks at what has arrived already: makes no
  /// request and does not wait.
  bool hasChanged();

  bool isLost() const { return connection_->isLost(); }

 private:
  X11Session(std::unique_ptr<X11Connection> connection, std::uint32_t newest_randr_minor);
  void selectRootEvents();
  bool isChange(const xcb_generic_event_t& event) const;

  std::unique_ptr<X11Connection> connection_;
  X11Monitors monitors_;
  X11Settings settings_;
  bool changed_ = true;  ///< until the first reading, and when a reading was overtaken by events
};

}  // namespace platform::desktop
