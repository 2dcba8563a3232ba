// The live displays of an X server; see server_displays.h for limits and losses. Any thread may call.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "desktop/model/export.h"
#include "desktop/model/server_displays.h"

namespace platform::desktop {

struct X11Options {
  std::optional<std::string> display;    ///< absent: the value of DISPLAY at each attempt
  std::uint32_t newest_randr_minor = 5;  ///< the newest version 1.x of RandR to use
  std::chrono::milliseconds time_limit{2000};
  std::chrono::milliseconds pause_after_failure{200};
};

class PLATFORM_API X11Displays : public ServerDisplays {
 public:
  explicit X11Displays(const X11Options& options = {});
};

/// The number of requests with a reply that this process has made to X servers, failed ones included. It does not grow
/// while nothing changes on the server.
PLATFORM_API std::uint64_t x11RoundTrips();

}  // namespace platform::desktop
