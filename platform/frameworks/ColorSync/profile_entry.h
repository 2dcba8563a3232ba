// What ColorSyncIterateInstalledProfiles gives its call-back. Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

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
