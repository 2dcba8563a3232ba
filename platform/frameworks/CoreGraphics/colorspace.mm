// CoreGraphics: colour spaces that are made from profiles.
#include <CoreGraphics/CoreGraphics.h>

#import <Foundation/Foundation.h>

#include "desktop/parts.h"
#include "frameworks/ColorSync/color_profile.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::calls::Call;
namespace calls = platform::calls;

/// The object behind a CGColorSpaceRef.
@interface PlatformColorSpace : NSObject {
  platform::desktop::ColorSpace _space;
}
- (instancetype)initWithSpace:(const platform::desktop::ColorSpace&)space;
- (BOOL)isWideGamutRGB;
@end

@implementation PlatformColorSpace

- (instancetype)initWithSpace:(const platform::desktop::ColorSpace&)space {
  self = [super init];
  if (self != nil) {
    _space = space;
  }
  return self;
}

- (BOOL)isWideGamutRGB {
  return _space.is_rgb && _space.is_wide;
}

@end

extern "C" {

CGColorSpaceRef CGColorSpaceCreateWithPlatformColorSpace(const void* ref) {
  const auto fault = calls::fault(Call::CGColorSpaceCreateWithPlatformColorSpace);
  if (const auto object = platform::retainedFault<CGColorSpaceRef>(fault)) {
    return *object;
  }
  if (ref == nullptr) {
    return nullptr;
  }
  auto* const profile = (PlatformColorProfile*)ref;
  if (![profile isKindOfClass:[PlatformColorProfile class]]) {
    return nullptr;
  }
  const auto space = platform::desktop::gamutPart().color_space([profile reader]);
  return space ? reinterpret_cast<CGColorSpaceRef>([[PlatformColorSpace alloc] initWithSpace:*space]) : nullptr;
}

bool CGColorSpaceIsWideGamutRGB(CGColorSpaceRef space) {
  const calls::Fault fault = calls::fault(Call::CGColorSpaceIsWideGamutRGB);
  if (fault.fail || fault.number || space == nullptr) {
    return fault.number.value_or(0) != 0;
  }
  auto* const made = (PlatformColorSpace*)space;
  return [made isKindOfClass:[PlatformColorSpace class]] && [made isWideGamutRGB];
}

}  // extern "C"
