#include "frameworks/hooks/require.h"

#include <cstdio>
#include <cstdlib>

namespace platform {

void stop(const char* function, const char* reason) {
  std::fprintf(stderr, "%s: %s\n", function, reason);
  std::abort();
}

}  // namespace platform
