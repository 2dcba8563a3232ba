// CoreFoundation: what every type can do, and the types' numbers, with ColorSync's.
#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include "frameworks/ColorSync/color_profile.h"
#include "frameworks/CoreFoundation/uuids.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
namespace calls = platform::calls;

namespace {

/// The numbers are this library's own; as on the Mac, an object of another kind has the type 1.
enum : CFTypeID {
  kTypeOfOtherObjects = 1,
  kBooleanType,
  kDataType,
  kDictionaryType,
  kNumberType,
  kStringType,
  kUrlType,
  kUuidType,
  kProfileType,
};

id object(CFTypeRef reference) { return static_cast<id>(const_cast<void*>(reference)); }

/// In Foundation, booleans are numbers of a separate class.
bool isBoolean(id value) {
  static const Class boolean_class = [[NSNumber numberWithBool:YES] class];
  return [value isKindOfClass:boolean_class];
}

bool haveSameUnits(NSString* first, NSString* second) {
  return [first length] == [second length] && [first compare:second options:NSLiteralSearch] == NSOrderedSame;
}

CFTypeID typeOf(id value) {
  // Looked up once: the look-up costs more than the query.
  static const Class string_class = [NSString class];
  static const Class number_class = [NSNumber class];
  static const Class dictionary_class = [NSDictionary class];
  static const Class url_class = [NSURL class];
  static const Class data_class = [NSData class];
  if ([value isKindOfClass:string_class]) {
    return kStringType;
  }
  if ([value isKindOfClass:number_class]) {
    return isBoolean(value) ? kBooleanType : kNumberType;
  }
  if ([value isKindOfClass:dictionary_class]) {
    return kDictionaryType;
  }
  if ([value isKindOfClass:url_class]) {
    return kUrlType;
  }
  if ([value isKindOfClass:data_class]) {
    return kDataType;
  }
  static const Class profile_class = [PlatformColorProfile class];
  if ([value isKindOfClass:profile_class]) {
    return kProfileType;
  }
  return platform::isUuid(value) ? kUuidType : kTypeOfOtherObjects;
}

}  // namespace

extern "C" {

CFTypeRef CFRetain(CFTypeRef reference) {
  requireObject(reference, "CFRetain");
  return [object(reference) retain];
}

void CFRelease(CFTypeRef reference) {
  requireObject(reference, "CFRelease");
  if ([object(reference) retainCount] > 1) {
    [object(reference) release];
    return;
  }
  const ScopedPool pool;  // dealloc may autorelease
  [object(reference) release];
}

CFTypeRef CFAutorelease(CFTypeRef reference) {
  requireObject(reference, "CFAutorelease");
  return [object(reference) autorelease];
}

CFIndex CFGetRetainCount(CFTypeRef reference) {
  requireObject(reference, "CFGetRetainCount");
  return static_cast<CFIndex>([object(reference) retainCount]);
}

Boolean CFEqual(CFTypeRef first, CFTypeRef second) {
  const calls::Fault fault = calls::fault(Call::CFEqual);
  if (fault.fail || fault.number) {
    return fault.number.value_or(0) != 0;
  }
  requireObject(first, "CFEqual");
  requireObject(second, "CFEqual");
  if (first == second) {
    return true;
  }
  const ScopedPool pool;
  // In Foundation the number 1 equals the boolean YES, and a string one that is canonically equivalent; not here.
  return isBoolean(object(first)) == isBoolean(object(second)) && [object(first) isEqual:object(second)] &&
         (![object(first) isKindOfClass:[NSString class]] || haveSameUnits(object(first), object(second)));
}

CFTypeID CFGetTypeID(CFTypeRef reference) {
  requireObject(reference, "CFGetTypeID");
  return typeOf(object(reference));
}

CFTypeID CFBooleanGetTypeID(void) { return kBooleanType; }
CFTypeID CFDataGetTypeID(void) { return kDataType; }
CFTypeID CFDictionaryGetTypeID(void) { return kDictionaryType; }
CFTypeID CFNumberGetTypeID(void) { return kNumberType; }
CFTypeID CFStringGetTypeID(void) { return kStringType; }
CFTypeID CFURLGetTypeID(void) { return kUrlType; }
CFTypeID CFUUIDGetTypeID(void) { return kUuidType; }
CFTypeID ColorSyncProfileGetTypeID(void) { return kProfileType; }

}  // extern "C"
