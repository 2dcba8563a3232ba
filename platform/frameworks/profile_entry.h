// What ColorSyncIterateInstalledProfiles gives its call-back. Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace platform {

/// A file URL that has its path at hand; to Foundation it is one like others. Null for a path that is not UTF-8. The
/// caller releases.
NSURL* newFileUrl(const std::string& path);

}  // namespace platform

/// The dictionary of an installed profile, which has at most three keys: smaller, and quicker to ask, than a hash
/// table.
@interface PlatformProfileEntry : NSDictionary {
  NSString* _profileClass;
  NSString* _profileDescription;
  NSURL* _profileUrl;
}
/// A null value is a key that the dictionary has not got.
- (instancetype)initWithClass:(NSString*)profileClass description:(NSString*)description url:(NSURL*)url;
@end
