#include "frameworks/ColorSync/color_profile.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

using platform::desktop::IccProfile;

namespace {

/// Null when there is not that much memory. A large buffer gets large pages, which are filled in a fraction of the
/// time.
void* allocate(std::size_t size) {
  constexpr std::size_t kLargePage = 2 << 20;
  if (size < 2 * kLargePage) {
    return std::malloc(std::max<std::size_t>(size, 1));
  }
  const std::size_t whole_pages = (size + kLargePage - 1) / kLargePage * kLargePage;
  void* const memory = std::aligned_alloc(kLargePage, whole_pages);
  if (memory != nullptr) {
    madvise(memory, whole_pages, MADV_HUGEPAGE);  // only a hint
  }
  return memory;
}

}  // namespace

@implementation PlatformColorProfile

- (instancetype)initWithPath:(const std::string&)path isRegularFile:(BOOL)isRegularFile {
  self = [super init];
  if (self != nil) {
    std::optional<IccProfile> profile = IccProfile::open(path, isRegularFile);
    if (!profile) {
      [self release];
      return nil;
    }
    _reader = new IccProfile(*std::move(profile));
    _mutex = new std::mutex;
  }
  return self;
}

- (void)dealloc {
  [_element release];
  delete _mutex;
  delete _reader;
  [super dealloc];
}

- (const IccProfile&)reader {
  return *_reader;
}

- (NSData*)copyElement:(std::uint32_t)signature {
  const std::lock_guard lock(*_mutex);
  if (_element != nil && _signature == signature) {
    return [_element retain];
  }
  const auto tag = _reader->find(signature);
  void* const bytes = tag ? allocate(tag->size) : nullptr;
  if (bytes == nullptr || !_reader->read(tag->offset, bytes, tag->size)) {
    std::free(bytes);
    return nil;
  }
  [_element release];
  // The data takes over the memory: the file's bytes are copied once.
  static const Class data_class = [NSData class];
  _element = [[data_class alloc] initWithBytesNoCopy:bytes length:tag->size freeWhenDone:YES];
  _signature = signature;
  return [_element retain];
}

@end
