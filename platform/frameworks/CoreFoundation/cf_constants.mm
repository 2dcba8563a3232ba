// CoreFoundation's constants.
//
// They are written by the first initialiser of this library after the pool's, so that the static initialisers of this
// library and of programs that link to it find them ready. To everybody else they are constant, so that here they have
// the constants' names for the linker only.
#import <Foundation/Foundation.h>

#include "frameworks/Foundation/early_messages.h"

#define CONSTANT(name) asm(#name) __attribute__((visibility("default")))

extern "C" {

id platform_allocator CONSTANT(kCFAllocatorDefault) = nil;
id platform_true CONSTANT(kCFBooleanTrue) = nil;
id platform_false CONSTANT(kCFBooleanFalse) = nil;

}  // extern "C"

namespace {

__attribute__((constructor(102))) void makeConstants() {
  const id number = platform::classNamed("NSNumber");
  platform_true = platform::sendEarly(platform::sendEarly(number, "numberWithBool:", YES), "retain");
  platform_false = platform::sendEarly(platform::sendEarly(number, "numberWithBool:", NO), "retain");
}

}  // namespace
