// File URLs. Objective-C++ only; any thread.
#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace platform {

/// A file URL that has its path at hand; to Foundation it is one like others. Null for a path that is not UTF-8. The
/// caller releases.
NSURL* newFileUrl(const std::string& path);

}  // namespace platform

@interface NSURL (PlatformPath)
/// The URL's path, or null. The caller releases. Nothing is autoreleased on the way.
- (NSString*)copyPlatformPath;
@end
