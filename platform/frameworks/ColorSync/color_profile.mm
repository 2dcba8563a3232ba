#include "frameworks/ColorSync/color_profile.h"

#include "desktop/icc/icc_elements.h"

@implementation PlatformColorProfile

- (instancetype)initWithPath:(const std::string&)path {
  self = [super init];
  if (self != nil && !platform::desktop::isIccProfile(path)) {
    [self release];
    return nil;
  }
  if (self != nil) {
    _path = new std::string(path);
    _mutex = new std::mutex;
  }
  return self;
}

- (void)dealloc {
  [_element release];
  delete _mutex;
  delete _path;
  [super dealloc];
}

- (const std::string&)path {
  return *_path;
}

- (NSData*)copyElement:(std::uint32_t)signature {
  const std::lock_guard lock(*_mutex);
  if (_element != nil && _signature == signature) {
    return [_element retain];
  }
  auto bytes = platform::desktop::readElement(*_path, signature);
  if (!bytes) {
    return nil;
  }
  [_element release];
  // The data takes over the memory: the file's bytes are copied once, by the read itself.
  const std::size_t size = bytes->size;
  _element = [[NSData alloc] initWithBytesNoCopy:bytes->data.release() length:size freeWhenDone:YES];
  _signature = signature;
  return [_element retain];
}

@end
