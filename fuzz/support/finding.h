// How a fuzzer says that something does not hold. Any thread may call.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the process, which libFuzzer takes for a finding, unless the claim holds.
inline void require(bool holds, const char* claim) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
  }
}

}  // namespace fuzz
