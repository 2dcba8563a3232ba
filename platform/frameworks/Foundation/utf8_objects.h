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

/// The same for the path of a file, which is also given in UTF-8; null when the path needs escapes in a URL.
NSURL* newPlainFileUrl(std::string_view utf8, NSString* path);

}  // namespace platform

@interface NSURL (PlatformPath)
/// The URL's path, or null. The caller releases. Nothing is autoreleased.
- (NSString*)copyPlatformPath;
@end
