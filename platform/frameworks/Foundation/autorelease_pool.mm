#include "frameworks/Foundation/autorelease_pool.h"

#import <Foundation/Foundation.h>

#include "frameworks/Foundation/early_messages.h"

extern "C" {

void* objc_autoreleasePoolPush(void) { return [[NSAutoreleasePool alloc] init]; }

void objc_autoreleasePoolPop(void* pool) { [static_cast<NSAutoreleasePool*>(pool) release]; }

}  // extern "C"

namespace {

/// Runs before the other initialisers of this library and of whatever links to it. The pool is kept for the life of the
/// thread: what a program's static initialisers autorelease has no other place to go.
__attribute__((constructor(101))) void pushBasePool() {
  platform::sendEarly(platform::sendEarly(platform::classNamed("NSAutoreleasePool"), "alloc"), "init");
}

}  // namespace
