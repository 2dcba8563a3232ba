#include "recording_host.h"

namespace {
RecordingHost* current = nullptr;
}  // namespace

RecordedCall gRecorded;
std::uint64_t gResult = 0;

RecordingHost::RecordingHost() : previous_(gResolver) {
  current = this;
  gResolver = &resolve;
  gRecorded = {};
  gResult = 0;
}

RecordingHost::~RecordingHost() {
  gResolver = previous_;
  current = nullptr;
}

void* RecordingHost::resolve(const char* name) {
  current->asked_.emplace_back(name);
  const auto found = current->entries_.find(name);
  return found != current->entries_.end() ? found->second : nullptr;
}

std::uint64_t recordCall(std::uint64_t i0, std::uint64_t i1, std::uint64_t i2, std::uint64_t i3, std::uint64_t i4,
                         std::uint64_t i5, double f0, double f1, double f2, double f3, double f4, double f5, double f6,
                         double f7) {
  ++gRecorded.count;
  gRecorded.integers = {i0, i1, i2, i3, i4, i5};
  gRecorded.floats = {f0, f1, f2, f3, f4, f5, f6, f7};
  return gResult;
}
