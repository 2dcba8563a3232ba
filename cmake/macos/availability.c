// Answers __builtin_available in the cross build. Zig's run-time library has this function too, but one that links to a
// call which systems before macOS 10.15 do not have, so that a program would not even start there. Those systems are
// earlier than any version that this project asks for.
#include <dlfcn.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

struct BuildVersion {
  uint32_t platform;
  uint32_t version;
};

__attribute__((visibility("hidden"))) int32_t __isPlatformVersionAtLeast(uint32_t platform, uint32_t major,
                                                                         uint32_t minor, uint32_t patch) {
  bool (*const check)(uint32_t, const struct BuildVersion[]) =
      (bool (*)(uint32_t, const struct BuildVersion[]))dlsym(RTLD_DEFAULT, "_availability_version_check");
  if (check == NULL) {
    return false;
  }
  const struct BuildVersion asked = {platform, (major & 0xFFFF) << 16 | (minor & 0xFF) << 8 | (patch & 0xFF)};
  return check(1, &asked);
}
