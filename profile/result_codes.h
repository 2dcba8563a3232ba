// Result codes of the profile services, as the host receives them.
#pragma once

#include <cstdint>

/// The QV02 document was read.
inline constexpr std::int32_t kQVINoError = 0;
/// The profile has no QV02 tag that can be read.
inline constexpr std::int32_t kQVIFailedToReadTag = 466;
