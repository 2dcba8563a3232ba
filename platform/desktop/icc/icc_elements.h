// Whole tag elements of profile files, as bytes. Any thread may call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "desktop/icc/icc_file.h"
#include "desktop/icc/icc_profile.h"
#include "desktop/model/export.h"

namespace platform::desktop {

struct FreeBytes {
  void operator()(void* bytes) const { std::free(bytes); }
};

/// Bytes in memory from malloc; null when there are none.
struct Bytes {
  std::unique_ptr<std::uint8_t, FreeBytes> data;
  std::size_t size = 0;
};

/// True when the file can be read as a profile.
PLATFORM_API bool isIccProfile(const std::string& path);

/// The element of the tag with this signature; it takes as much memory as the element has bytes. Nothing when the file
/// is no profile, has no such tag, cannot be read, or there is not that much memory.
PLATFORM_API std::optional<Bytes> readElement(const std::string& path, std::uint32_t signature);
PLATFORM_API std::optional<Bytes> readElement(const IccFile& file, const IccTag& tag);

}  // namespace platform::desktop
