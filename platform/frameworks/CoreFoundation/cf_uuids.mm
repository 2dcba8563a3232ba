// CoreFoundation: UUIDs. There is one object per value at a time, so that callers may compare references.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

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

/// Five groups of bytes with any character between them, as in canonical text; 0 for each byte that is not two digits.
Uuid parseLeniently(std::string_view text) {
  Uuid bytes{};
  text.remove_prefix(std::min(text.find_first_of("0123456789ABCDEFabcdef"), text.size()));
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) {
      text.remove_prefix(std::min<std::size_t>(1, text.size()));
    }
    if (text.size() < 2) {
      break;
    }
    std::uint8_t byte = 0;
    const char* const end = text.data() + 2;
    bytes[i] = std::from_chars(text.data(), end, byte, 16).ptr == end ? byte : 0;
    text.remove_prefix(2);
  }
  return bytes;
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
  if (text == nullptr || [(NSString*)text length] == 0) {
    return nullptr;
  }
  return platform::makeUuid(parseLeniently(asciiOf((NSString*)text)));
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
