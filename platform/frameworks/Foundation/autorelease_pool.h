// Autorelease pools for C++ code.
//
// This Foundation writes a line to stderr for each object that is autoreleased on a thread without a pool. So the
// thread that loads this library gets a bottom pool, which is never drained (startup.mm), and every framework function
// that autoreleases has its own pool around that work.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

/// The Objective-C run-time's entry points of the same names. A pop takes its push's result and releases what was
/// autoreleased since. Pops come in the reverse order of pushes, on the same thread.
CF_EXPORT void* objc_autoreleasePoolPush(void);
CF_EXPORT void objc_autoreleasePoolPop(void* pool);

CF_EXTERN_C_END

namespace platform {

/// A pool for one scope.
class ScopedPool {
 public:
  ScopedPool() : pool_(objc_autoreleasePoolPush()) {}
  ~ScopedPool() { objc_autoreleasePoolPop(pool_); }
  ScopedPool(const ScopedPool&) = delete;
  ScopedPool& operator=(const ScopedPool&) = delete;

 private:
  void* const pool_;
};

}  // namespace platform
