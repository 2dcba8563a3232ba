// CoreFoundation: dictionaries of objects.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::fatal;
using platform::calls::Call;
namespace calls = platform::calls;

namespace {

id asObject(const void* reference) { return static_cast<id>(const_cast<void*>(reference)); }

const void* retainObject(CFAllocatorRef, const void* value) { return CFRetain(value); }
void releaseObject(CFAllocatorRef, const void* value) { CFRelease(value); }
/// The caller releases, as the callback's name copyDescription requires.
CFStringRef describeObject(const void* value) {
  // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount)
  return reinterpret_cast<CFStringRef>([[asObject(value) description] copy]);
}
Boolean equalObjects(const void* first, const void* second) { return [asObject(first) isEqual:asObject(second)]; }
CFHashCode hashObject(const void* value) { return [asObject(value) hash]; }

/// Dictionaries are Foundation's, which hold objects only.
void requireObjectCallBacks(const CFDictionaryKeyCallBacks* keys, const CFDictionaryValueCallBacks* values,
                            const char* function) {
  if (keys != &kCFTypeDictionaryKeyCallBacks || values != &kCFTypeDictionaryValueCallBacks) {
    fatal(function, "only dictionaries of objects are supported");
  }
}

}  // namespace

extern "C" {

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, retainObject, releaseObject, describeObject, equalObjects, hashObject};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, retainObject, releaseObject, describeObject,
                                                                    equalObjects};

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex numValues,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
  if (const auto fault = platform::retainedFault<CFDictionaryRef>(calls::fault(Call::CFDictionaryCreate))) {
    return *fault;
  }
  requireObjectCallBacks(keyCallBacks, valueCallBacks, "CFDictionaryCreate");
  if (numValues < 0) {
    return nullptr;
  }
  const ScopedPool pool;
  NSMutableDictionary* const entries = [NSMutableDictionary dictionaryWithCapacity:static_cast<NSUInteger>(numValues)];
  for (CFIndex i = 0; i < numValues; ++i) {
    requireObject(keys[i], "CFDictionaryCreate");
    requireObject(values[i], "CFDictionaryCreate");
    if ([entries objectForKey:asObject(keys[i])] == nil) {  // of equal keys the first stays, as on the Mac
      [entries setObject:asObject(values[i]) forKey:asObject(keys[i])];
    }
  }
  return reinterpret_cast<CFDictionaryRef>([[NSDictionary alloc] initWithDictionary:entries]);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  if (const auto fault =
          platform::retainedFault<CFMutableDictionaryRef>(calls::fault(Call::CFDictionaryCreateMutable))) {
    return *fault;
  }
  requireObjectCallBacks(keyCallBacks, valueCallBacks, "CFDictionaryCreateMutable");
  if (capacity < 0) {
    return nullptr;
  }
  const ScopedPool pool;
  return reinterpret_cast<CFMutableDictionaryRef>([[NSMutableDictionary alloc] init]);  // the capacity is only a hint
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  if (calls::shouldFail(Call::CFDictionarySetValue)) {
    return;
  }
  requireObject(dictionary, "CFDictionarySetValue");
  requireObject(key, "CFDictionarySetValue");
  requireObject(value, "CFDictionarySetValue");
  const ScopedPool pool;
  [(NSMutableDictionary*)dictionary setObject:asObject(value) forKey:asObject(key)];
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
  const calls::Fault fault = calls::fault(Call::CFDictionaryGetCount);
  if (fault.fail || fault.number) {
    return fault.number.value_or(0);
  }
  requireObject(dictionary, "CFDictionaryGetCount");
  return static_cast<CFIndex>([(NSDictionary*)dictionary count]);
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  if (const auto fault = platform::borrowedFault<const void*>(calls::fault(Call::CFDictionaryGetValue))) {
    return *fault;
  }
  requireObject(dictionary, "CFDictionaryGetValue");
  requireObject(key, "CFDictionaryGetValue");
  return [(NSDictionary*)dictionary objectForKey:asObject(key)];
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key, const void** value) {
  const calls::Fault fault = calls::fault(Call::CFDictionaryGetValueIfPresent);
  if (fault.fail) {
    return false;
  }
  if (fault.number || fault.object != nullptr) {  // with a number: present, and null
    *value = fault.object;
    return true;
  }
  requireObject(dictionary, "CFDictionaryGetValueIfPresent");
  requireObject(key, "CFDictionaryGetValueIfPresent");
  const void* const found = [(NSDictionary*)dictionary objectForKey:asObject(key)];
  if (found != nullptr && value != nullptr) {
    *value = found;
  }
  return found != nullptr;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void** values) {
  const calls::Fault fault = calls::fault(Call::CFDictionaryGetKeysAndValues);
  if (fault.fail) {
    return;
  }
  requireObject(dictionary, "CFDictionaryGetKeysAndValues");
  const ScopedPool pool;
  NSArray* const all_keys = [(NSDictionary*)dictionary allKeys];
  for (NSUInteger i = 0; i < [all_keys count]; ++i) {
    const id key = [all_keys objectAtIndex:i];
    if (keys != nullptr) {
      keys[i] = key;
    }
    if (values != nullptr) {
      values[i] = fault.object != nullptr ? fault.object : [(NSDictionary*)dictionary objectForKey:key];
    }
  }
}

}  // extern "C"
