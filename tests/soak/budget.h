// How much memory the calling process may gain: what the documented kept references predict. One thread.
#pragma once

#include <array>
#include <optional>

#include "soak/record.h"

namespace soak {

/// Bytes that a call of the method leaves behind on purpose, at most, with malloc's own.
std::size_t keptBy(Method method);

class Budget {
 public:
  void count(Method method) { ++calls_[static_cast<std::size_t>(method)]; }
  /// The first measurement is the beginning, the last one the end.
  void measured(const Memory& memory);

  std::size_t calls() const;
  /// Prints both measurements and the budget; true when the gain is within it.
  bool report() const;

 private:
  std::array<std::size_t, kMethods> calls_{};
  std::optional<Memory> first_;
  Memory last_;
  std::uint64_t most_resident_ = 0;
};

}  // namespace soak
