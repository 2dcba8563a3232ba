#include "platform/frameworks/foundation_probe.h"

#import <Foundation/Foundation.h>

@interface DeathCounter : NSObject {
 @public
  int* deaths;
}
@end

@implementation DeathCounter
- (void)dealloc {
  ++*deaths;
  [super dealloc];
}
@end

namespace probe {
namespace {

class Pool {
 public:
  Pool() : pool_([[NSAutoreleasePool alloc] init]) {}
  ~Pool() { [pool_ release]; }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

 private:
  NSAutoreleasePool* const pool_;
};

NSString* string(const std::string& utf8) { return [NSString stringWithUTF8String:utf8.c_str()]; }

NSString* string(const std::u16string& text, Part part) {
  NSString* const whole = [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.data())
                                                  length:text.size()];
  switch (part) {
    case Part::kAll:
      return whole;
    case Part::kWithoutFirstUnit:
      return [whole substringFromIndex:1];
    case Part::kWithoutLastUnit:
      return [whole substringToIndex:[whole length] - 1];
  }
  return nil;
}

std::string text(NSString* string) {
  const char* const utf8 = [string UTF8String];
  return utf8 != nullptr ? utf8 : "(null)";
}

NSStringEncoding value(Encoding encoding) {
  switch (encoding) {
    case Encoding::kAscii:
      return NSASCIIStringEncoding;
    case Encoding::kMacRoman:
      return NSMacOSRomanStringEncoding;
    case Encoding::kUtf8:
      return NSUTF8StringEncoding;
    case Encoding::kUtf16BigEndian:
      return NSUTF16BigEndianStringEncoding;
  }
  return NSASCIIStringEncoding;
}

}  // namespace

std::optional<std::size_t> locationOf(const std::string& part, const std::string& text, Search search) {
  const Pool pool;
  NSString* const where = string(text);
  NSRange range = {NSNotFound, 0};
  switch (search) {
    case Search::kPlain:
      range = [where rangeOfString:string(part)];
      break;
    case Search::kOptions:
      range = [where rangeOfString:string(part) options:NSLiteralSearch];
      break;
    case Search::kOptionsAndRange:
      range = [where rangeOfString:string(part) options:NSLiteralSearch range:NSMakeRange(0, [where length])];
      break;
  }
  return range.location == NSNotFound ? std::nullopt : std::optional<std::size_t>(range.location);
}

std::optional<std::u16string> decoded(const std::string& utf8) {
  const Pool pool;
  NSString* const made = string(utf8);
  if (made == nil) {
    return std::nullopt;
  }
  std::u16string units([made length], u'\0');
  [made getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
  return units;
}

std::optional<std::vector<std::uint8_t>> data(const std::u16string& text, Encoding encoding, bool lossy, Part part) {
  const Pool pool;
  NSData* const made = [string(text, part) dataUsingEncoding:value(encoding) allowLossyConversion:lossy];
  if (made == nil) {
    return std::nullopt;
  }
  const auto* const bytes = static_cast<const std::uint8_t*>([made bytes]);
  return std::vector<std::uint8_t>(bytes, bytes + [made length]);
}

std::optional<FileUrl> fileUrl(const std::string& path, Kind kind) {
  const Pool pool;
  NSURL* const url = kind == Kind::kUnsaid ? [NSURL fileURLWithPath:string(path)]
                                           : [NSURL fileURLWithPath:string(path) isDirectory:kind == Kind::kDirectory];
  if (url == nil) {
    return std::nullopt;
  }
  return FileUrl{text([url absoluteString]), text([url path]), text([url lastPathComponent])};
}

bool makesFileUrl(const std::u16string& path, Part part) {
  const Pool pool;
  NSString* const made = string(path, part);
  return [NSURL fileURLWithPath:made] != nil && [NSURL fileURLWithPath:made isDirectory:NO] != nil;
}

bool systemIsAtLeast(long major, long minor, long patch) {
  const Pool pool;
  const NSOperatingSystemVersion version = {major, minor, patch};
  return [[NSProcessInfo processInfo] isOperatingSystemAtLeastVersion:version];
}

void autoreleaseCounter(int* deaths) {
  DeathCounter* const counter = [[DeathCounter alloc] init];
  counter->deaths = deaths;
  [counter autorelease];
}

CFNumberRef createNumber(unsigned long long value) {
  return (CFNumberRef)[[NSNumber alloc] initWithUnsignedLongLong:value];
}

CFTypeRef createOtherObject() { return [[NSObject alloc] init]; }

}  // namespace probe
