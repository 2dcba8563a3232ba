// CoreFoundation: UUIDs. There is one object per value at a time, so that callers may compare references.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "desktop/model/uuid.h"
#include "frameworks/CoreFoundation/uuids.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
using platform::desktop::Uuid;
namespace calls = platform::calls;

@interface PlatformUUID : NSObject <NSCopying> {
 @public
  Uuid bytes;
  NSUInteger references;
}
@end

namespace {

/// Guards the table and every UUID's reference count, because the last release may race with a new creation of the same
/// value. Never freed.
struct Table {
  std::mutex mutex;
  std::map<Uuid, PlatformUUID*> objects;
};

Table& table() {
  static auto* const only = new Table;
  return *only;
}

/// The text's ASCII; a "?" for each other UTF-16 code unit.
std::string asciiOf(NSString* text) {
  std::string ascii;
  for (NSUInteger i = 0; i < [text length]; ++i) {
    const unichar unit = [text characterAtIndex:i];
    ascii.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
  }
  return ascii;
}

PlatformUUID* object(CFUUIDRef uuid) { return (PlatformUUID*)uuid; }

}  // namespace

@implementation PlatformUUID

- (id)retain {
  const std::lock_guard lock(table().mutex);
  ++references;
  return self;
}

- (oneway void)release {
  {
    const std::lock_guard lock(table().mutex);
    if (--references > 0) {
      return;
    }
    table().objects.erase(bytes);
  }
  [self dealloc];
}

- (NSUInteger)retainCount {
  const std::lock_guard lock(table().mutex);
  return references;
}

- (id)copyWithZone:(NSZone*)zone {
  return [self retain];
}

- (BOOL)isEqual:(id)other {
  return self == other || ([other isKindOfClass:[PlatformUUID class]] && ((PlatformUUID*)other)->bytes == bytes);
}

- (NSUInteger)hash {
  NSUInteger hash = 0;
  std::memcpy(&hash, bytes.data(), sizeof hash);
  return hash;
}

- (NSString*)description {
  return [NSString stringWithUTF8String:platform::desktop::uuidText(bytes).c_str()];
}

@end

namespace platform {

CFUUIDRef makeUuid(const Uuid& bytes) {
  const ScopedPool pool;
  const std::lock_guard lock(table().mutex);
  PlatformUUID*& entry = table().objects[bytes];
  if (entry == nil) {
    entry = [PlatformUUID alloc];
    entry->bytes = bytes;
  }
  ++entry->references;
  return reinterpret_cast<CFUUIDRef>(entry);
}

Uuid bytesOf(CFUUIDRef uuid) { return object(uuid)->bytes; }

bool isUuid(id value) { return [value isKindOfClass:[PlatformUUID class]]; }

}  // namespace platform

extern "C" {

CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef, CFUUIDBytes bytes) {
  Uuid value{};
  static_assert(sizeof value == sizeof bytes);
  std::memcpy(value.data(), &bytes, sizeof bytes);
  return platform::makeUuid(value);
}

CFUUIDRef CFUUIDCreateFromString(CFAllocatorRef, CFStringRef text) {
  requireObject(text, "CFUUIDCreateFromString");
  const std::optional<Uuid> bytes = platform::desktop::parseUuid(asciiOf((NSString*)text));
  return bytes ? platform::makeUuid(*bytes) : nullptr;
}

CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid) {
  requireObject(uuid, "CFUUIDGetUUIDBytes");
  CFUUIDBytes bytes;
  std::memcpy(&bytes, object(uuid)->bytes.data(), sizeof bytes);
  return bytes;
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid) {
  if (const auto fault = platform::retainedFault<CFStringRef>(calls::fault(Call::CFUUIDCreateString))) {
    return *fault;
  }
  requireObject(uuid, "CFUUIDCreateString");
  const ScopedPool pool;
  NSString* const text = [[NSString alloc] initWithUTF8String:platform::desktop::uuidText(object(uuid)->bytes).c_str()];
  return reinterpret_cast<CFStringRef>(text);
}

}  // extern "C"
