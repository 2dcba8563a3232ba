// CoreFoundation: file URLs.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/utf8_objects.h"
#include "frameworks/hooks/calls.h"

using platform::requireObject;
using platform::ScopedPool;

extern "C" {

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef filePath, CFURLPathStyle pathStyle,
                                       Boolean isDirectory) {
  requireObject(filePath, "CFURLCreateWithFileSystemPath");
  if (pathStyle != kCFURLPOSIXPathStyle || [(NSString*)filePath length] == 0) {
    return nullptr;
  }
  const ScopedPool pool;
  NSURL* const made = [[NSURL alloc] initFileURLWithPath:(NSString*)filePath isDirectory:isDirectory != 0];
  return reinterpret_cast<CFURLRef>(made);
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle pathStyle) {
  requireObject(url, "CFURLCopyFileSystemPath");
  if (pathStyle != kCFURLPOSIXPathStyle) {
    return nullptr;
  }
  return reinterpret_cast<CFStringRef>([(NSURL*)url copyPlatformPath]);
}

CFStringRef CFURLGetString(CFURLRef url) {
  requireObject(url, "CFURLGetString");
  return reinterpret_cast<CFStringRef>([(NSURL*)url relativeString]);  // the URL's own
}

}  // extern "C"
