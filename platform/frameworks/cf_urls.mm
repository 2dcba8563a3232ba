// CoreFoundation: file URLs.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include "frameworks/autorelease_pool.h"
#include "frameworks/calls.h"
#include "frameworks/file_url.h"
#include "frameworks/require.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
namespace calls = platform::calls;

extern "C" {

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef filePath, CFURLPathStyle pathStyle,
                                       Boolean isDirectory) {
  if (calls::enter(Call::CFURLCreateWithFileSystemPath)) {
    return nullptr;
  }
  requireObject(filePath, "CFURLCreateWithFileSystemPath");
  if (pathStyle != kCFURLPOSIXPathStyle) {
    return nullptr;
  }
  const ScopedPool pool;
  NSURL* const made = [[NSURL alloc] initFileURLWithPath:(NSString*)filePath isDirectory:isDirectory != 0];
  return reinterpret_cast<CFURLRef>(made);
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle pathStyle) {
  if (calls::enter(Call::CFURLCopyFileSystemPath)) {
    return nullptr;
  }
  requireObject(url, "CFURLCopyFileSystemPath");
  if (pathStyle != kCFURLPOSIXPathStyle) {
    return nullptr;
  }
  return reinterpret_cast<CFStringRef>([(NSURL*)url platformCopyPath]);
}

CFStringRef CFURLGetString(CFURLRef url) {
  if (calls::enter(Call::CFURLGetString)) {
    return nullptr;
  }
  requireObject(url, "CFURLGetString");
  return reinterpret_cast<CFStringRef>([(NSURL*)url relativeString]);  // the URL's own
}

}  // extern "C"
