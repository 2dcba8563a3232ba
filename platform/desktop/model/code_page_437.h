// Text in code page 437, the character set of the text descriptors in a monitor's EDID. Any thread may call.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "desktop/model/export.h"

namespace platform::desktop {

/// The text as valid UTF-8. Control characters (below 0x20, and 0x7F) are left out: a display's name is shown on one
/// line.
PLATFORM_API std::string fromCodePage437(std::span<const std::uint8_t> text);

}  // namespace platform::desktop
