#include "frameworks/profile_entry.h"

#include <ColorSync/ColorSync.h>

#include <algorithm>

/// A URL whose path need not be worked out.
@interface PlatformFileURL : NSURL {
  NSString* _filePath;
}
/// `url` is `path` as a URL.
- (instancetype)initWithString:(NSString*)url path:(NSString*)path;
@end

namespace {

/// True for a path that stands in a URL as it is.
bool isPlain(const std::string& path) {
  const auto plain = [](unsigned char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '-' && character <= '9') || character == '_' || character == '~';  // '-' to '9': - . / digits
  };
  return path.starts_with('/') && !path.starts_with("//") && std::all_of(path.begin(), path.end(), plain);
}

NSString* newString(const std::string& text) {
  return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

}  // namespace

@implementation PlatformFileURL

- (instancetype)initWithString:(NSString*)url path:(NSString*)path {
  self = [super initWithString:url];
  if (self != nil) {
    _filePath = [path retain];
  }
  return self;
}

- (void)dealloc {
  [_filePath release];
  [super dealloc];
}

- (NSString*)path {
  return _filePath;
}

@end

namespace platform {

NSURL* newFileUrl(const std::string& path) {
  NSString* const text = newString(path);
  if (text == nil) {
    return nil;
  }
  NSURL* url = nil;
  if (isPlain(path)) {
    // The URL that Foundation would make, in a tenth of the time.
    NSString* const url_text = newString("file://" + path);
    url = [[PlatformFileURL alloc] initWithString:url_text path:text];
    [url_text release];
  } else {
    url = [[NSURL alloc] initFileURLWithPath:text isDirectory:NO];
  }
  [text release];
  return url;
}

}  // namespace platform

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
