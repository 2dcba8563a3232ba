// Makes the system's Foundation behave like Apple's, where the plugin sees a difference.
//
// Categories replace the methods for the whole process when this library is loaded, before anything that links to it
// runs. Each method below changes what its comment names and nothing else.
//
// Two differences stay, because nothing depends on them: a file URL made from a relative path is absolute at once, and
// accented characters are not decomposed in file URLs, because here a decomposed file name is another name.
#import <Foundation/Foundation.h>

#include <objc/runtime.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "frameworks/Foundation/apple_text.h"
#include "frameworks/Foundation/utf8_objects.h"

extern "C" const char* GSPathHandling(const char* mode);  // Foundation exports it and declares it nowhere

namespace {

/// The class's own method, which a category hides that has the same one.
template <typename Function>
Function hiddenMethod(const char* class_name, SEL selector) {
  unsigned count = 0;
  const std::unique_ptr<Method, decltype(&std::free)> methods(class_copyMethodList(objc_getClass(class_name), &count),
                                                              std::free);
  // Those of categories come first.
  while (!sel_isEqual(method_getName(methods.get()[count - 1]), selector)) {
    --count;
  }
  // By way of void (*)(), as compilers warn of other casts between functions.
  const auto function = reinterpret_cast<void (*)()>(method_getImplementation(methods.get()[count - 1]));
  return reinterpret_cast<Function>(function);
}

// --- searching: the empty string is never found; the system's Foundation finds it at the start. rangeOfString: finds
//     canonically equivalent text; the system's Foundation does not. With options, a part that begins with a combining
//     character is searched literally; the system's Foundation raises an exception. containsString: calls
//     rangeOfString: in both.

constexpr NSRange kNotFound = {NSNotFound, 0};

/// An empty regular expression matches, also on the Mac; a null part is left to the original, which raises.
bool isNeverFound(NSString* part, NSStringCompareOptions options) {
  return part != nil && [part length] == 0 && (options & NSRegularExpressionSearch) == 0;
}

using SearchInRange = NSRange (*)(id, SEL, NSString*, NSStringCompareOptions, NSRange);

std::u16string unitsOf(NSString* text) {
  std::u16string units([text length], u'\0');
  [text getCharacters:reinterpret_cast<unichar*>(units.data()) range:NSMakeRange(0, units.size())];
  return units;
}

NSRange rangeInString(SearchInRange original, id self, SEL selector, NSString* part, NSStringCompareOptions options,
                      NSRange range) {
  return isNeverFound(part, options) && NSMaxRange(range) <= [self length]
             ? kNotFound
             : original(self, selector, part, options, range);
}

// --- half of a surrogate pair, as at the end of a substring: UTF8String returns null; in the system's Foundation it
//     raises an exception

using Utf8String = const char* (*)(id, SEL);

const char* utf8OrNull(Utf8String original, id self, SEL selector) {
  @try {
    return original(self, selector);
  } @catch (NSException*) {
    return nullptr;
  }
}

// --- conversion to ASCII, Mac Roman and big-endian UTF-16: what the system's Foundation drops and substitutes differs

using Encode = NSData* (*)(id, SEL, NSStringEncoding, BOOL);

NSData* encode(Encode original, id self, SEL selector, NSStringEncoding encoding, BOOL lossy) {
  std::optional<std::string> bytes;
  switch (encoding) {
    case NSASCIIStringEncoding:
      bytes = platform::asciiBytes(unitsOf(self), lossy);
      break;
    case NSMacOSRomanStringEncoding:
      bytes = platform::macRomanBytes(unitsOf(self), lossy);
      break;
    case NSUTF16BigEndianStringEncoding:
      bytes = platform::utf16BigEndianBytes(unitsOf(self));
      break;
    default:
      return original(self, selector, encoding, lossy);
  }
  if (!bytes) {
    return nil;
  }
  const std::string& converted = *bytes;
  return [NSData dataWithBytes:converted.data() length:converted.size()];
}

// --- file URLs: the caller decides whether a URL is a directory's; without the caller's word a trailing slash decides,
//     then the file system. The system's Foundation always looks at the file system, keeps a trailing slash that the
//     caller excluded, drops it from a relative path, and takes "~" for the root.

/// Nil when the current directory is gone.
NSString* absolutePath(NSString* path) {
  if ([path length] > 0 && [path characterAtIndex:0] == '/') {
    return path;
  }
  char directory[PATH_MAX];
  if (getcwd(directory, sizeof directory) == nullptr) {
    return nil;
  }
  const std::string_view here = directory;
  NSString* const prefix = [NSString stringWithUTF8String:directory];
  return [prefix stringByAppendingFormat:here.ends_with('/') ? @"%@" : @"/%@", path];
}

bool endsInSlash(NSString* path) { return [path length] > 0 && [path characterAtIndex:[path length] - 1] == '/'; }

/// The path itself decides when the caller does not.
id initFileUrl(id self, NSString* path, std::optional<bool> said_directory) {
  char ascii[PATH_MAX];  // without what UTF8String autoreleases
  const bool is_ascii = platform::copyAscii(path, ascii, sizeof ascii);
  const char* const utf8 = is_ascii ? ascii : [path UTF8String];
  if (utf8 == nullptr) {  // a path with a lone surrogate names nothing
    [self release];
    return nil;
  }
  struct stat status {};
  const bool exists = !said_directory && !endsInSlash(path) && stat(utf8, &status) == 0;
  const bool is_directory = said_directory ? *said_directory : endsInSlash(path) || (exists && S_ISDIR(status.st_mode));
  static const Class url_class = [NSURL class];
  if (!is_directory && is_ascii && [self class] == url_class) {
    if (NSURL* const plain = platform::newPlainFileUrl(utf8, exists && S_ISREG(status.st_mode))) {
      [self release];
      return plain;
    }
  }
  if (is_directory && !endsInSlash(path)) {
    path = [path stringByAppendingString:@"/"];
  }
  while (!is_directory && [path length] > 1 && endsInSlash(path)) {
    path = [path substringToIndex:[path length] - 1];
  }
  return [self initWithScheme:NSURLFileScheme host:@"" path:path];
}

void requirePath(SEL selector, NSString* path) {
  if (path == nil) {
    [NSException raise:NSInvalidArgumentException format:@"[NSURL %s] nil string parameter", sel_getName(selector)];
  }
}

// --- the path of a URL: the system's Foundation unescapes it on the stack, which a very long path overflows

constexpr NSUInteger kLongUrl = 65536;
constexpr std::string_view kFilePrefix = "file://";

unsigned digitValue(char digit) { return digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10U; }

/// `url` is as initFileUrl made it, so every "%" begins an escape.
std::string unescapedPath(std::string_view url) {
  std::string path;
  path.reserve(url.size());
  for (std::size_t i = kFilePrefix.size(); i < url.size(); ++i) {
    if (url[i] == '%' && i + 2 < url.size()) {
      path.push_back(static_cast<char>(digitValue(url[i + 1]) * 16 + digitValue(url[i + 2])));
      i += 2;
    } else {
      path.push_back(url[i]);
    }
  }
  return path;
}

/// "\" is an ordinary character in a path; the system's Foundation also takes it for a separator.
__attribute__((constructor)) void separatePathsAtSlashesOnly() { GSPathHandling("unix"); }

}  // namespace

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"  // deliberate

@implementation NSString (PlatformDifferences)

- (NSRange)rangeOfString:(NSString*)part {
  if (part == nil) {
    static const auto original = hiddenMethod<NSRange (*)(id, SEL, NSString*)>("NSString", _cmd);
    return original(self, _cmd, part);
  }
  const std::optional<platform::TextRange> found = platform::findText(unitsOf(self), unitsOf(part));
  return found ? NSMakeRange(found->location, found->length) : kNotFound;
}

- (NSRange)rangeOfString:(NSString*)part options:(NSStringCompareOptions)options {
  static const auto original = hiddenMethod<NSRange (*)(id, SEL, NSString*, NSStringCompareOptions)>("NSString", _cmd);
  return isNeverFound(part, options) ? kNotFound : original(self, _cmd, part, options);
}

- (NSRange)rangeOfString:(NSString*)part options:(NSStringCompareOptions)options range:(NSRange)range {
  static const auto original = hiddenMethod<SearchInRange>("NSString", _cmd);
  return rangeInString(original, self, _cmd, part, options, range);
}

/// Where the other forms end, unless the part is a regular expression.
- (NSRange)rangeOfString:(NSString*)part
                 options:(NSStringCompareOptions)options
                   range:(NSRange)range
                  locale:(NSLocale*)locale {
  using Search = NSRange (*)(id, SEL, NSString*, NSStringCompareOptions, NSRange, NSLocale*);
  static const auto original = hiddenMethod<Search>("NSString", _cmd);
  @try {
    return original(self, _cmd, part, options, range, locale);
  } @catch (NSException*) {
    if ((options & NSLiteralSearch) != 0 || part == nil || NSMaxRange(range) > [self length]) {
      @throw;
    }
    return original(self, _cmd, part, options | NSLiteralSearch, range, locale);
  }
}

- (const char*)UTF8String {
  static const auto original = hiddenMethod<Utf8String>("NSString", _cmd);
  return utf8OrNull(original, self, _cmd);
}

- (NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy {
  static const auto original = hiddenMethod<Encode>("NSString", _cmd);
  return encode(original, self, _cmd, encoding, lossy);
}

@end

// Foundation's own classes with such methods; others hold no surrogates.

@interface GSUnicodeString : NSString
@end
@interface GSMutableString : NSMutableString
@end
@interface GSImmutableString : NSString
@end

@implementation GSUnicodeString (PlatformDifferences)

- (const char*)UTF8String {
  static const auto original = hiddenMethod<Utf8String>("GSUnicodeString", _cmd);
  return utf8OrNull(original, self, _cmd);
}

@end

@implementation GSMutableString (PlatformDifferences)

- (const char*)UTF8String {
  static const auto original = hiddenMethod<Utf8String>("GSMutableString", _cmd);
  return utf8OrNull(original, self, _cmd);
}

@end

@implementation GSImmutableString (PlatformDifferences)

- (NSRange)rangeOfString:(NSString*)part options:(NSStringCompareOptions)options range:(NSRange)range {
  static const auto original = hiddenMethod<SearchInRange>("GSImmutableString", _cmd);
  return rangeInString(original, self, _cmd, part, options, range);
}

- (NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy {
  static const auto original = hiddenMethod<Encode>("GSImmutableString", _cmd);
  return encode(original, self, _cmd, encoding, lossy);
}

@end

@implementation NSURL (PlatformDifferences)

- (id)initFileURLWithPath:(NSString*)path {
  requirePath(_cmd, path);
  return initFileUrl(self, absolutePath(path), std::nullopt);
}

- (id)initFileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory {
  requirePath(_cmd, path);
  return initFileUrl(self, absolutePath(path), isDirectory);
}

- (NSString*)path {
  static const auto original = hiddenMethod<NSString* (*)(id, SEL)>("NSURL", _cmd);
  NSString* const text = [self relativeString];
  if ([text length] <= kLongUrl || ![self isFileURL] || [self baseURL] != nil) {
    return original(self, _cmd);
  }
  std::string unescaped = unescapedPath([text UTF8String]);
  if (unescaped.size() > 1 && unescaped.back() == '/') {
    unescaped.pop_back();
  }
  return [NSString stringWithUTF8String:unescaped.c_str()];
}

@end

#pragma clang diagnostic pop
