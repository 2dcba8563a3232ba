// The first initialisers of this library: the pool at the bottom and CoreFoundation's constants.
//
// They run, in this order, before the other initialisers of this library and of what links to it. The selectors of a
// source file's message expressions are registered by an initialiser of that file, which may run later; these find
// class and selector by name, which works as soon as Foundation itself is loaded.
#import <Foundation/Foundation.h>

#include <objc/message.h>
#include <objc/runtime.h>

#include "frameworks/Foundation/autorelease_pool.h"

// Other files see these as constants; here the constants' names are for the linker only.
#define CONSTANT(name) asm(#name) __attribute__((visibility("default")))

extern "C" {

id platform_allocator CONSTANT(kCFAllocatorDefault) = nil;
id platform_true CONSTANT(kCFBooleanTrue) = nil;
id platform_false CONSTANT(kCFBooleanFalse) = nil;

void* objc_autoreleasePoolPush(void) {
  static const Class type = [NSAutoreleasePool class];  // once: looking it up costs as much as the pool
  return [[type alloc] init];
}

void objc_autoreleasePoolPop(void* pool) { [static_cast<NSAutoreleasePool*>(pool) release]; }

}  // extern "C"

namespace {

id classNamed(const char* name) { return reinterpret_cast<id>(objc_getClass(name)); }

template <typename... Arguments>
id sendEarly(id receiver, const char* selector, Arguments... arguments) {
  SEL registered = sel_registerName(selector);
  using Method = id (*)(id, SEL, Arguments...);
  return reinterpret_cast<Method>(objc_msg_lookup(receiver, registered))(receiver, registered, arguments...);
}

/// Never popped: what a program's static initialisers autorelease has no other pool.
__attribute__((constructor(101))) void pushBasePool() {
  sendEarly(sendEarly(classNamed("NSAutoreleasePool"), "alloc"), "init");
}

__attribute__((constructor(102))) void makeConstants() {
  const id number = classNamed("NSNumber");
  platform_true = sendEarly(sendEarly(number, "numberWithBool:", YES), "retain");
  platform_false = sendEarly(sendEarly(number, "numberWithBool:", NO), "retain");
}

}  // namespace
