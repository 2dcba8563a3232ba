#include "frameworks/ColorSync/profile_entry.h"

#include <ColorSync/ColorSync.h>

#include <initializer_list>

@implementation PlatformProfileEntry

- (instancetype)initWithClass:(NSString*)profileClass description:(NSString*)description url:(NSURL*)url {
  self = [super init];
  if (self != nil) {
    _profileClass = [profileClass retain];
    _profileDescription = [description retain];
    _profileUrl = [url retain];
  }
  return self;
}

- (void)dealloc {
  [_profileClass release];
  [_profileDescription release];
  [_profileUrl release];
  [super dealloc];
}

- (NSUInteger)count {
  return (_profileClass != nil ? 1 : 0) + (_profileDescription != nil ? 1 : 0) + (_profileUrl != nil ? 1 : 0);
}

- (id)objectForKey:(id)key {
  const struct {
    CFStringRef key;
    id value;
  } entries[] = {{kColorSyncProfileClass, _profileClass},
                 {kColorSyncProfileDescription, _profileDescription},
                 {kColorSyncProfileURL, _profileUrl}};
  for (const auto& entry : entries) {
    if (key == (id)entry.key) {  // nearly always one of the constants itself
      return entry.value;
    }
  }
  for (const auto& entry : entries) {
    if ([(NSString*)entry.key isEqual:key]) {
      return entry.value;
    }
  }
  return nil;
}

- (NSEnumerator*)keyEnumerator {
  NSMutableArray* const keys = [NSMutableArray array];
  for (NSString* const key :
       {(NSString*)kColorSyncProfileClass, (NSString*)kColorSyncProfileDescription, (NSString*)kColorSyncProfileURL}) {
    if ([self objectForKey:key] != nil) {
      [keys addObject:key];
    }
  }
  return [keys objectEnumerator];
}

@end
