// The result code of the geometry methods. The codes of the profile methods are in profile/result_codes.h.
#pragma once

#include <cstdint>

/// The display is not among the active displays; 0xF4520FF3, which a host that reads a UInt32 sees as 4099018739.
inline constexpr std::int32_t kQVIDisplayNotFound = -195948557;
