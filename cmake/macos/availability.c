// Implements __builtin_available in the cross build. Zig's run-time library has this function too, but links to a call
// that systems before macOS 10.15 lack, so that a program would not start there. Those systems are older than any
// version that this project tests for.
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
  const struct BuildVersion wanted = {platform, (major & 0xFFFF) << 16 | (minor & 0xFF) << 8 | (patch & 0xFF)};
  return check(1, &wanted);
}
