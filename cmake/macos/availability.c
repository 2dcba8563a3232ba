// Answers __builtin_available in the cross build. Zig's run-time library has this function too, but it needs a call
// that systems before macOS 10.15 do not have. Those are earlier than any version that this project asks for.
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

struct BuildVersion {
  uint32_t platform;
  uint32_t version;
};

extern bool _availability_version_check(uint32_t count, const struct BuildVersion versions[])
    __attribute__((weak_import));

__attribute__((visibility("hidden"))) int32_t __isPlatformVersionAtLeast(uint32_t platform, uint32_t major,
                                                                         uint32_t minor, uint32_t patch) {
  if (&_availability_version_check == NULL) {
    return false;
  }
  const struct BuildVersion asked = {platform, (major & 0xFFFF) << 16 | (minor & 0xFF) << 8 | (patch & 0xFF)};
  return _availability_version_check(1, &asked);
}
