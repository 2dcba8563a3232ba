// Foundation objects made from UTF-8. Objective-C++ only; any thread.
#pragma once

#import <Foundation/Foundation.h>

#include <cstddef>
#include <string_view>

namespace platform {

/// Null for invalid UTF-8. The caller releases. UTF8String of an ASCII string returns the string's own bytes.
NSString* newString(std::string_view utf8);

/// Copies the string with a final NUL. False unless it is ASCII without a NUL and fits.
bool copyAscii(NSString* string, char* buffer, std::size_t size);

/// A file URL that keeps its path; otherwise like any other. Null for invalid UTF-8. The caller releases.
NSURL* newFileUrl(std::string_view path);

/// The same; null when the path is not absolute, ends in "/" or needs escapes in a URL. `saw_regular_file`: the caller
/// has found a regular file at the path.
NSURL* newPlainFileUrl(std::string_view path, bool saw_regular_file);

}  // namespace platform

@interface NSURL (PlatformPath)
/// The URL's path, or null. The caller releases. Nothing is autoreleased.
- (NSString*)copyPlatformPath;
/// Whether there was a regular file at the path when the URL was made. NO when nothing has looked.
- (BOOL)platformSawRegularFile;
@end
