// References that are deliberately never released. Any thread.
#pragma once

namespace DisplayServices::internal {

/// Takes over the caller's reference for the life of the process, and gives the object back, borrowed. Where it is
/// called, one line says why the reference is kept.
template <typename Ref>
__attribute__((annotate("rc_ownership_trusted_implementation"))) Ref kept(__attribute__((cf_consumed)) Ref ref) {
  return ref;
}

}  // namespace DisplayServices::internal
