#include "direct_names.h"

#include <ColorSync/ColorSync.h>

#import <Foundation/Foundation.h>

namespace bench {

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
