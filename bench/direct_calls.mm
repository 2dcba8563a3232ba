#include "direct_calls.h"

#include <ColorSync/ColorSync.h>

#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#include <array>
#include <cstdlib>

namespace bench {
namespace {

constexpr uint32_t kNowhere = UINT32_MAX;

uint32_t positionOf(CGDirectDisplayID display, const CGDirectDisplayID* displays, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i) {
    if (displays[i] == display) {
      return i;
    }
  }
  return kNowhere;
}

}  // namespace

double directScale(CGDirectDisplayID display) {
  const CGRect bounds = CGDisplayBounds(display);
  for (NSScreen* screen in [NSScreen screens]) {
    const CGRect frame = [screen frame];
    if (CGSizeEqualToSize(bounds.size, frame.size) && bounds.origin.x == frame.origin.x &&
        (bounds.origin.y == frame.origin.y || bounds.origin.y == frame.origin.y + 30.0)) {
      return [screen backingScaleFactor];
    }
  }
  return [[NSScreen mainScreen] backingScaleFactor];
}

CGRect directBounds(CGDirectDisplayID display) {
  const CGRect bounds = CGDisplayBounds(display);
  directScale(display);
  return bounds;
}

uint32_t directIndex(CGDirectDisplayID display) {
  uint32_t count = 0;
  CGGetActiveDisplayList(0, nullptr, &count);
  static std::array<CGDirectDisplayID, 10001> displays;
  const CGError error = CGGetActiveDisplayList(displays.size(), displays.data(), &count);
  return error == kCGErrorSuccess ? positionOf(display, displays.data(), count) : kNowhere;
}

uint32_t directIndexKeepingBuffer(CGDirectDisplayID display) {
  uint32_t count = 0;
  CGGetActiveDisplayList(0, nullptr, &count);
  auto* const displays = static_cast<CGDirectDisplayID*>(std::malloc(count * sizeof(CGDirectDisplayID)));
  const CGError error = CGGetActiveDisplayList(count, displays, &count);
  return error == kCGErrorSuccess ? positionOf(display, displays, count) : kNowhere;
}

CGDirectDisplayID directDisplayUnder(CGRect rect) {
  CGDirectDisplayID display = 0;
  uint32_t count = 0;
  return CGGetDisplaysWithRect(rect, 1, &display, &count) == kCGErrorSuccess ? display : 0;
}

CGDirectDisplayID directDisplayUnderKeepingBuffer(CGRect rect) {
  auto* const display = static_cast<CGDirectDisplayID*>(std::malloc(sizeof(CGDirectDisplayID)));
  uint32_t count = 0;
  return CGGetDisplaysWithRect(rect, 1, display, &count) == kCGErrorSuccess ? *display : 0;
}

CFStringRef keyOf(CGDirectDisplayID display) {
  const CFUUIDRef uuid = CGDisplayCreateUUIDFromDisplayID(display);
  const CFStringRef key = CFUUIDCreateString(kCFAllocatorDefault, uuid);
  CFRelease(uuid);
  return key;
}

CFDictionaryRef makeNames(CGDirectDisplayID display, CFStringRef name) {
  const CFMutableDictionaryRef names = CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                                                 &kCFTypeDictionaryValueCallBacks);
  const CFStringRef key = keyOf(display);
  CFDictionarySetValue(names, key, name);
  CFRelease(key);
  return names;
}

CFStringRef directName(CFDictionaryRef names, CGDirectDisplayID display) {
  const CFStringRef key = keyOf(display);
  const auto name = static_cast<CFStringRef>(CFDictionaryGetValue(names, key));
  CFRelease(key);
  return name;
}

const char* directText(CFStringRef text) { return [(NSString*)text UTF8String]; }

}  // namespace bench
