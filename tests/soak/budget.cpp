#include "soak/budget.h"

#include <algorithm>
#include <cstdio>

namespace soak {
namespace {

constexpr double kMiB = 1024.0 * 1024.0;

/// What is neither a gain nor kept: lists of ten thousand profiles, and what the desktop remembers, are larger or
/// smaller at one moment than at another.
constexpr std::uint64_t kAllocatedTolerance = 8 << 20;
/// Memory that was given back to malloc and not to the system, of every thread that there was.
constexpr std::uint64_t kResidentTolerance = 48 << 20;

}  // namespace

std::size_t keptBy(Method method) {
  switch (method) {
    case Method::kGetIndex:
      return 64 * 4 + 16;  // a buffer for 64 numbers
    case Method::kDisplayIDForWindow:
      return 32;  // a buffer for one
    case Method::kGetName:
      return 128;  // the text that it was looked up by
    case Method::kGetProfilePath:
      return 1536;  // a queue, the text that was sought, the URL and the description that were found
    default:
      return 0;
  }
}

void Budget::measured(const Memory& memory) {
  if (!first_) {
    first_ = memory;
  }
  last_ = memory;
  most_resident_ = std::max(most_resident_, memory.resident);
}

std::size_t Budget::calls() const {
  std::size_t calls = 0;
  for (const std::size_t count : calls_) {
    calls += count;
  }
  return calls;
}

bool Budget::report() const {
  if (!first_) {
    std::printf("memory was not measured\n");
    return false;
  }
  std::uint64_t kept = 0;
  for (std::size_t i = 0; i < kMethods; ++i) {
    kept += calls_[i] * keptBy(static_cast<Method>(i));
  }
  const auto gain = [](std::uint64_t before, std::uint64_t after) {
    return (static_cast<double>(after) - static_cast<double>(before)) / kMiB;
  };
  const double allocated = gain(first_->allocated, last_.allocated);
  const double resident = gain(first_->resident, last_.resident);
  const double budget = static_cast<double>(kept) / kMiB;
  const double allocated_limit = budget + static_cast<double>(kAllocatedTolerance) / kMiB;
  const double resident_limit = budget + static_cast<double>(kResidentTolerance) / kMiB;
  std::printf("allocated: %.1f MiB before, %.1f after, %.1f more; kept on purpose %.1f, with tolerance %.1f\n",
              static_cast<double>(first_->allocated) / kMiB, static_cast<double>(last_.allocated) / kMiB, allocated,
              budget, allocated_limit);
  std::printf("resident: %.1f MiB before, %.1f after, %.1f at most; %.1f more, with tolerance %.1f\n",
              static_cast<double>(first_->resident) / kMiB, static_cast<double>(last_.resident) / kMiB,
              static_cast<double>(most_resident_) / kMiB, resident, resident_limit);
#ifdef OSTREVIN_SANITIZED
  std::printf("memory is not judged: a sanitizer manages it\n");
  return true;
#else
  return allocated <= allocated_limit && resident <= resident_limit;
#endif
}

}  // namespace soak
