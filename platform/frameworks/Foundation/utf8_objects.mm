#include "frameworks/Foundation/utf8_objects.h"

#include <algorithm>
#include <cstring>

#include "frameworks/Foundation/autorelease_pool.h"

/// An immutable string without a NUL, kept as UTF-8: Foundation's own make a new autoreleased copy for each UTF8String.
@interface PlatformAsciiString : NSString {
 @public
  NSUInteger _length;
  char* _text;  // behind the object, in the same memory
}
@end

/// A URL that keeps the path it was made from.
@interface PlatformFileURL : NSURL {
  NSString* _filePath;
  BOOL _sawRegularFile;
}
/// `url` is `path` as a URL.
- (instancetype)initWithString:(NSString*)url path:(NSString*)path sawRegularFile:(BOOL)sawRegularFile;
@end

namespace {

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c != 0 && c < 0x80; });
}

/// `start` and `rest` as one string.
NSString* newAsciiString(std::string_view start, std::string_view rest = {}) {
  static const Class type = [PlatformAsciiString class];
  const std::size_t length = start.size() + rest.size();
  // Without init: that of NSString makes another string. The memory comes cleared, so the text ends in a NUL.
  auto* const string = (PlatformAsciiString*)NSAllocateObject(type, length + 1, nullptr);
  string->_length = length;
  string->_text = reinterpret_cast<char*>(string) + class_getInstanceSize(type);
  std::copy(rest.begin(), rest.end(), std::copy(start.begin(), start.end(), string->_text));
  return string;
}

/// True for an absolute path of a file that needs no escapes in a URL.
bool isPlain(std::string_view path) {
  const auto plain = [](unsigned char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '-' && character <= '9') || character == '_' || character == '~';  // '-' to '9': - . / digits
  };
  return path.starts_with('/') && !path.starts_with("//") && !path.ends_with('/') &&
         std::all_of(path.begin(), path.end(), plain);
}

}  // namespace

@implementation PlatformAsciiString

- (NSUInteger)length {
  return _length;
}

- (unichar)characterAtIndex:(NSUInteger)index {
  if (index >= _length) {
    [NSException raise:NSRangeException format:@"[%@ %s] index out of range", [self class], sel_getName(_cmd)];
  }
  return static_cast<unichar>(_text[index]);
}

- (void)getCharacters:(unichar*)buffer range:(NSRange)range {
  if (range.location > _length || range.length > _length - range.location) {
    [NSException raise:NSRangeException format:@"[%@ %s] range out of range", [self class], sel_getName(_cmd)];
  }
  std::copy_n(_text + range.location, range.length, buffer);
}

- (const char*)UTF8String {
  return _text;
}

- (BOOL)getCString:(char*)buffer maxLength:(NSUInteger)size encoding:(NSStringEncoding)encoding {
  const bool is_kept_as =
      encoding == NSUTF8StringEncoding || encoding == NSASCIIStringEncoding || encoding == NSISOLatin1StringEncoding;
  if (!is_kept_as || size <= _length) {
    return [super getCString:buffer maxLength:size encoding:encoding];
  }
  std::copy_n(_text, _length + 1, buffer);
  return YES;
}

- (id)copyWithZone:(NSZone*)zone {
  return [self retain];
}

@end

@implementation NSURL (PlatformPath)

- (NSString*)copyPlatformPath {
  const platform::ScopedPool pool;
  return [[self path] copy];
}

- (BOOL)platformSawRegularFile {
  return NO;
}

@end

@implementation PlatformFileURL

- (instancetype)initWithString:(NSString*)url path:(NSString*)path sawRegularFile:(BOOL)sawRegularFile {
  self = [super initWithString:url];
  if (self != nil) {
    _filePath = [path copy];
    _sawRegularFile = sawRegularFile;
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

- (NSString*)copyPlatformPath {
  return [_filePath retain];
}

- (BOOL)platformSawRegularFile {
  return _sawRegularFile;
}

@end

namespace platform {

NSString* newString(std::string_view utf8) {
  return isAscii(utf8) ? newAsciiString(utf8)
                       : [[NSString alloc] initWithBytes:utf8.data() length:utf8.size() encoding:NSUTF8StringEncoding];
}

bool copyAscii(NSString* string, char* buffer, std::size_t size) {
  // UTF-8 of as many bytes as the string has UTF-16 units is ASCII.
  const NSUInteger length = [string length];
  return length < size && [string getCString:buffer maxLength:size encoding:NSUTF8StringEncoding] &&
         std::strlen(buffer) == length;
}

NSURL* newPlainFileUrl(std::string_view path, bool saw_regular_file) {
  if (!isPlain(path)) {
    return nil;
  }
  // The URL that Foundation would make, in a tenth of the time.
  static const Class type = [PlatformFileURL class];
  NSString* const url_text = newAsciiString("file://", path);
  NSString* const path_text = newAsciiString(path);
  NSURL* const url = [[type alloc] initWithString:url_text path:path_text sawRegularFile:saw_regular_file];
  [path_text release];
  [url_text release];
  return url;
}

NSURL* newFileUrl(std::string_view path) {
  if (NSURL* const plain = newPlainFileUrl(path, false)) {
    return plain;
  }
  NSString* const text = newString(path);
  NSURL* const url = text != nil ? [[NSURL alloc] initFileURLWithPath:text isDirectory:NO] : nil;
  [text release];
  return url;
}

}  // namespace platform
