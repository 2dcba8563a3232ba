// Foundation objects made from UTF-8. Objective-C++ only; any thread.
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace platform {

/// Null for invalid UTF-8. The caller releases.
NSString* newString(std::string_view utf8);

/// A file URL that keeps its path; otherwise like any other. Null for invalid UTF-8. The caller releases.
NSURL* newFileUrl(const std::string& path);

}  // namespace platform

@interface NSURL (PlatformPath)
/// The URL's path, or null. The caller releases. Nothing is autoreleased.
- (NSString*)copyPlatformPath;
@end
