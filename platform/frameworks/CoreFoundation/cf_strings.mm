// CoreFoundation: strings. UTF-8 is the only encoding; another one fails.
#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <mutex>
#include <string>
#include <unordered_map>

#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/utf8_objects.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::requireObject;
using platform::ScopedPool;
using platform::calls::Call;
namespace calls = platform::calls;

namespace {

/// Never freed, like the strings in it.
struct ConstantStrings {
  std::mutex mutex;
  std::unordered_map<std::string, CFStringRef> by_text;
};

ConstantStrings& constantStrings() {
  static auto* const only = new ConstantStrings;
  return *only;
}

constexpr CFIndex kUtf8BytesPerUnit = 3;

}  // namespace

extern "C" {

CFStringRef __CFStringMakeConstantString(const char* text) {
  requireObject(text, "CFSTR");
  ConstantStrings& strings = constantStrings();
  const std::lock_guard lock(strings.mutex);
  const auto known = strings.by_text.find(text);
  if (known != strings.by_text.end()) {
    return known->second;
  }
  const ScopedPool pool;
  NSString* const made = [[NSString alloc] initWithUTF8String:text];
  requireObject(made, "CFSTR");
  strings.by_text.emplace(text, reinterpret_cast<CFStringRef>(made));
  return reinterpret_cast<CFStringRef>(made);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex length, CFStringEncoding encoding,
                                    Boolean) {
  if (length < 0 || (bytes == nullptr && length > 0) || encoding != kCFStringEncodingUTF8) {
    return nullptr;
  }
  const ScopedPool pool;
  NSString* const made = [[NSString alloc] initWithBytes:bytes
                                                  length:static_cast<NSUInteger>(length)
                                                encoding:NSUTF8StringEncoding];
  return reinterpret_cast<CFStringRef>(made);
}

CFStringRef CFStringCreateWithSubstring(CFAllocatorRef, CFStringRef string, CFRange range) {
  requireObject(string, "CFStringCreateWithSubstring");
  const auto length = static_cast<CFIndex>([(NSString*)string length]);
  if (range.location < 0 || range.length < 0 || range.location > length - range.length) {
    platform::fatal("CFStringCreateWithSubstring", "range out of bounds");
  }
  const ScopedPool pool;
  NSString* const part = [(NSString*)string
      substringWithRange:NSMakeRange(static_cast<NSUInteger>(range.location), static_cast<NSUInteger>(range.length))];
  return reinterpret_cast<CFStringRef>([part retain]);
}

CFIndex CFStringGetLength(CFStringRef string) {
  const calls::Fault fault = calls::fault(Call::CFStringGetLength);
  if (fault.fail || fault.number) {
    return fault.number.value_or(0);
  }
  requireObject(string, "CFStringGetLength");
  return static_cast<CFIndex>([(NSString*)string length]);
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
  constexpr CFIndex kNotFound = -1;
  using Limits = std::numeric_limits<CFIndex>;
  const bool is_out_of_range = length < Limits::min() / kUtf8BytesPerUnit || length > Limits::max() / kUtf8BytesPerUnit;
  if (encoding != kCFStringEncodingUTF8 || is_out_of_range) {
    return kNotFound;
  }
  return length * kUtf8BytesPerUnit;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding) {
  requireObject(string, "CFStringGetCString");
  if (buffer == nullptr || bufferSize <= 0 || encoding != kCFStringEncodingUTF8) {
    return false;
  }
  if (platform::copyAscii((NSString*)string, buffer, static_cast<std::size_t>(bufferSize))) {
    return true;
  }
  const ScopedPool pool;
  NSData* const text = [(NSString*)string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:NO];
  if (text == nil || [text length] >= static_cast<NSUInteger>(bufferSize)) {
    return false;
  }
  if ([text length] > 0) {
    std::memcpy(buffer, [text bytes], [text length]);
  }
  buffer[[text length]] = '\0';
  return true;
}

}  // extern "C"
