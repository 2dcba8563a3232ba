// CoreFoundation: UUIDs. There is one object per value at a time, so that callers may compare references.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "frameworks/CoreFoundation/uuids.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/answers.h"
#include "frameworks/hooks/calls.h"

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

constexpr std::size_t kTextLength = 36;

bool isDashPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

std::string canonicalText(const Uuid& bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(kTextLength);
  for (const std::uint8_t byte : bytes) {
    if (isDashPosition(text.size())) {
      text.push_back('-');
    }
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

std::optional<unsigned> digitValue(unichar digit) {
  if (digit >= '0' && digit <= '9') {
    return digit - '0';
  }
  if (digit >= 'A' && digit <= 'F') {
    return digit - 'A' + 10U;
  }
  if (digit >= 'a' && digit <= 'f') {
    return digit - 'a' + 10U;
  }
  return std::nullopt;
}

std::optional<Uuid> parse(NSString* text) {
  if ([text length] != kTextLength) {
    return std::nullopt;
  }
  Uuid bytes{};
  std::size_t digits = 0;
  for (std::size_t position = 0; position < kTextLength; ++position) {
    const unichar character = [text characterAtIndex:position];
    if (isDashPosition(position)) {
      if (character != '-') {
        return std::nullopt;
      }
      continue;
    }
    const std::optional<unsigned> value = digitValue(character);
    if (!value) {
      return std::nullopt;
    }
    std::uint8_t& byte = bytes[digits / 2];
    byte = static_cast<std::uint8_t>(byte * 16 + *value);
    ++digits;
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
  return [NSString stringWithUTF8String:canonicalText(bytes).c_str()];
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
  const std::optional<Uuid> bytes = parse((NSString*)text);
  return bytes ? platform::makeUuid(*bytes) : nullptr;
}

CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid) {
  requireObject(uuid, "CFUUIDGetUUIDBytes");
  CFUUIDBytes bytes;
  std::memcpy(&bytes, object(uuid)->bytes.data(), sizeof bytes);
  return bytes;
}

CFStringRef CFUUIDCreateString(CFAllocatorRef, CFUUIDRef uuid) {
  if (const auto answer = platform::retainedAnswer<CFStringRef>(calls::answer(Call::CFUUIDCreateString))) {
    return *answer;
  }
  requireObject(uuid, "CFUUIDCreateString");
  const ScopedPool pool;
  NSString* const text = [[NSString alloc] initWithUTF8String:canonicalText(object(uuid)->bytes).c_str()];
  return reinterpret_cast<CFStringRef>(text);
}

}  // extern "C"
