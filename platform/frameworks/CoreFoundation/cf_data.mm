// CoreFoundation: data.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
namespace calls = platform::calls;

extern "C" {

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  if (length < 0 || (bytes == nullptr && length > 0)) {
    return nullptr;
  }
  const ScopedPool pool;
  NSData* const made = [[NSData alloc] initWithBytes:bytes length:static_cast<NSUInteger>(length)];
  return reinterpret_cast<CFDataRef>(made);
}

CFIndex CFDataGetLength(CFDataRef data) {
  const calls::Fault fault = calls::fault(Call::CFDataGetLength);
  if (fault.fail || fault.number) {
    return fault.number.value_or(0);
  }
  requireObject(data, "CFDataGetLength");
  return static_cast<CFIndex>([(NSData*)data length]);
}

const UInt8* CFDataGetBytePtr(CFDataRef data) {
  if (calls::shouldFail(Call::CFDataGetBytePtr)) {
    return nullptr;
  }
  requireObject(data, "CFDataGetBytePtr");
  return static_cast<const UInt8*>([(NSData*)data bytes]);
}

}  // extern "C"
