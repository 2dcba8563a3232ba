// What the public headers share: the mark of exported functions, and the result codes that the host receives.
#pragma once

#include <cstdint>

#define OSTREVIN_API __attribute__((visibility("default")))

/// The QV02 document was read.
inline constexpr std::int32_t kQVINoError = 0;
/// The profile has no QV02 tag that can be read.
inline constexpr std::int32_t kQVIFailedToReadTag = 466;
/// The display is not active; 0xF4520FF3, which a host that reads a UInt32 sees as 4099018739.
inline constexpr std::int32_t kQVIDisplayNotFound = -195948557;
