// How much this process asks X servers. Any thread may call.
#pragma once

#include <cstdint>

#include "desktop/model/export.h"

namespace platform::desktop {

/// The number of requests with a reply that the live desktop has made since the process began, those that failed
/// included. It does not grow while nothing changes on the X server.
PLATFORM_API std::uint64_t x11RoundTrips();

}  // namespace platform::desktop
