// CoreFoundation: numbers.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <cmath>
#include <cstdint>

#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
namespace calls = platform::calls;

namespace {

/// A number as 64 bits, and whether that is its exact value.
struct Bits {
  std::int64_t value = 0;
  bool exact = true;
};

Bits bitsOf(double value) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (std::isnan(value)) {
    return {0, false};
  }
  if (value >= kLimit) {
    return {INT64_MAX, false};
  }
  if (value < -kLimit) {
    return {INT64_MIN, false};
  }
  return {static_cast<std::int64_t>(value), std::trunc(value) == value};
}

bool isReal(NSNumber* number) { return *[number objCType] == 'd' || *[number objCType] == 'f'; }

Bits bitsOf(NSNumber* number) {
  if (isReal(number)) {
    return bitsOf([number doubleValue]);
  }
  switch (*[number objCType]) {
    case 'Q':
    case 'L': {
      const unsigned long long value = [number unsignedLongLongValue];
      return {static_cast<std::int64_t>(value), value <= INT64_MAX};
    }
    default:
      return {[number longLongValue], true};
  }
}

}  // namespace

extern "C" {

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
  requireObject(value, "CFNumberCreate");
  const ScopedPool pool;
  switch (type) {
    case kCFNumberSInt32Type:
      return reinterpret_cast<CFNumberRef>([[NSNumber alloc] initWithInt:*static_cast<const std::int32_t*>(value)]);
    case kCFNumberSInt64Type:
      return reinterpret_cast<CFNumberRef>(
          [[NSNumber alloc] initWithLongLong:*static_cast<const std::int64_t*>(value)]);
    case kCFNumberDoubleType:
      return reinterpret_cast<CFNumberRef>([[NSNumber alloc] initWithDouble:*static_cast<const double*>(value)]);
  }
  return nullptr;
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
  const calls::Fault fault = calls::fault(Call::CFNumberGetValue);
  if (fault.fail) {
    return false;
  }
  requireObject(number, "CFNumberGetValue");
  requireObject(value, "CFNumberGetValue");
  const Bits bits = fault.number ? Bits{*fault.number, true} : bitsOf((NSNumber*)number);
  switch (type) {
    case kCFNumberSInt32Type: {
      const auto cut = static_cast<std::int32_t>(bits.value);
      *static_cast<std::int32_t*>(value) = cut;  // also when something is lost, as on the Mac
      return bits.exact && cut == bits.value;
    }
    case kCFNumberSInt64Type:
      *static_cast<std::int64_t*>(value) = bits.value;
      return bits.exact;
    case kCFNumberDoubleType: {
      const double real = [(NSNumber*)number doubleValue];
      *static_cast<double*>(value) = real;
      const Bits back = bitsOf(real);
      return isReal((NSNumber*)number) || (back.exact && back.value == bits.value);
    }
  }
  return false;
}

}  // extern "C"
