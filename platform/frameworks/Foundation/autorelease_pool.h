// Autorelease pools, as far as C++ code needs them.
//
// Foundation here complains on stderr, once per object, when something is autoreleased on a thread that has no pool. So
// the thread that loads this library gets a pool at the bottom, which is never drained, and every framework function
// that autoreleases on its way has a pool of its own around that work.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

/// The Objective-C run-time's entry points of the same names: what is autoreleased on this thread after a push is
/// released by the pop that is given the push's result. Pops come in the reverse order of pushes, on the same thread.
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
