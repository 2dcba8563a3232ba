// Makes the system's Foundation behave like Apple's, where the plugin sees a difference.
//
// Methods are replaced for the whole process when this library is loaded, before anything that links to it runs. Each
// function below changes what its comment names and nothing else.
//
// Two differences stay, because nothing depends on them: a file URL made from a relative path is absolute at once, and
// accented characters are not decomposed in file URLs, because here a decomposed file name is another name.
#import <Foundation/Foundation.h>

#include <objc/runtime.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frameworks/Foundation/utf8_objects.h"

extern "C" const char* GSPathHandling(const char* mode);  // Foundation exports it and declares it nowhere

namespace {

// --- searching: the empty string is never found; the system's Foundation finds it at the start. A part that begins
//     with a combining character is searched literally; the system's Foundation raises an exception. containsString:
//     calls rangeOfString: in both.

constexpr NSRange kNotFound = {NSNotFound, 0};

struct Originals {
  NSRange (*rangeOfString)(id, SEL, NSString*) = nullptr;
  NSRange (*rangeOfStringOptions)(id, SEL, NSString*, NSStringCompareOptions) = nullptr;
  NSRange (*rangeOfStringOptionsRange)(id, SEL, NSString*, NSStringCompareOptions, NSRange) = nullptr;
  NSRange (*rangeInImmutableString)(id, SEL, NSString*, NSStringCompareOptions, NSRange) = nullptr;
  NSRange (*rangeOfStringInLocale)(id, SEL, NSString*, NSStringCompareOptions, NSRange, NSLocale*) = nullptr;
  NSData* (*data)(id, SEL, NSStringEncoding, BOOL) = nullptr;
  NSData* (*dataOfImmutableString)(id, SEL, NSStringEncoding, BOOL) = nullptr;
  const char* (*utf8)(id, SEL) = nullptr;
  const char* (*utf8OfUnicodeString)(id, SEL) = nullptr;
  const char* (*utf8OfMutableString)(id, SEL) = nullptr;
  NSString* (*path)(id, SEL) = nullptr;
};

Originals originals;

/// An empty regular expression matches, also on the Mac; a null part is left to the original, which raises.
bool isNeverFound(NSString* part, NSStringCompareOptions options) {
  return part != nil && [part length] == 0 && (options & NSRegularExpressionSearch) == 0;
}

NSRange rangeOfString(id self, SEL selector, NSString* part) {
  return isNeverFound(part, 0) ? kNotFound : originals.rangeOfString(self, selector, part);
}

NSRange rangeOfStringOptions(id self, SEL selector, NSString* part, NSStringCompareOptions options) {
  return isNeverFound(part, options) ? kNotFound : originals.rangeOfStringOptions(self, selector, part, options);
}

template <auto Original>
NSRange rangeOfStringOptionsRange(id self, SEL selector, NSString* part, NSStringCompareOptions options,
                                  NSRange range) {
  return isNeverFound(part, options) && NSMaxRange(range) <= [self length]
             ? kNotFound
             : (originals.*Original)(self, selector, part, options, range);
}

/// Where the other forms end, unless the part is a regular expression.
NSRange rangeOfStringInLocale(id self, SEL selector, NSString* part, NSStringCompareOptions options, NSRange range,
                              NSLocale* locale) {
  @try {
    return originals.rangeOfStringInLocale(self, selector, part, options, range, locale);
  } @catch (NSException*) {
    if ((options & NSLiteralSearch) != 0 || part == nil || NSMaxRange(range) > [self length]) {
      @throw;
    }
    return originals.rangeOfStringInLocale(self, selector, part, options | NSLiteralSearch, range, locale);
  }
}

// --- lone surrogates, as at the end of a substring: UTF8String returns null and a lossy conversion replaces them; in
//     the system's Foundation the first raises an exception and the second fails

template <auto Original>
const char* utf8String(id self, SEL selector) {
  @try {
    return (originals.*Original)(self, selector);
  } @catch (NSException*) {
    return nullptr;
  }
}

bool isHighSurrogate(unichar unit) { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(unichar unit) { return (unit & 0xFC00) == 0xDC00; }

/// A copy of the text with U+FFFD for each lone surrogate; nil when there is none.
NSString* withoutLoneSurrogates(NSString* text) {
  constexpr unichar kReplacement = 0xFFFD;
  std::vector<unichar> units([text length]);
  [text getCharacters:units.data() range:NSMakeRange(0, units.size())];
  bool changed = false;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (isHighSurrogate(units[i]) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
      ++i;
    } else if (isHighSurrogate(units[i]) || isLowSurrogate(units[i])) {
      units[i] = kReplacement;
      changed = true;
    }
  }
  if (!changed) {
    return nil;
  }
  return [NSString stringWithCharacters:units.data() length:units.size()];
}

template <auto Original>
NSData* dataUsingEncoding(id self, SEL selector, NSStringEncoding encoding, BOOL lossy) {
  NSData* const data = (originals.*Original)(self, selector, encoding, lossy);
  if (data != nil || !lossy) {
    return data;
  }
  return [withoutLoneSurrogates(self) dataUsingEncoding:encoding allowLossyConversion:lossy];
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

id initFileUrlWithPath(id self, SEL selector, NSString* path) {
  requirePath(selector, path);
  return initFileUrl(self, absolutePath(path), std::nullopt);
}

id initFileUrlWithPathIsDirectory(id self, SEL selector, NSString* path, BOOL is_directory) {
  requirePath(selector, path);
  return initFileUrl(self, absolutePath(path), is_directory);
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

NSString* path(id self, SEL selector) {
  NSString* const text = [self relativeString];
  if ([text length] <= kLongUrl || ![self isFileURL] || [self baseURL] != nil) {
    return originals.path(self, selector);
  }
  std::string unescaped = unescapedPath([text UTF8String]);
  if (unescaped.size() > 1 && unescaped.back() == '/') {
    unescaped.pop_back();
  }
  return [NSString stringWithUTF8String:unescaped.c_str()];
}

// --- replacing the methods

/// An IMP stands for methods of every signature; compilers warn of casts that do not go by way of void (*)().
template <typename To, typename From>
To castMethod(From function) {
  return reinterpret_cast<To>(reinterpret_cast<void (*)()>(function));
}

/// Replaces the method that `type` itself implements and returns the original.
template <typename Function>
Function replace(Class type, SEL selector, Function replacement) {
  Method method = class_getInstanceMethod(type, selector);
  return castMethod<Function>(
      class_replaceMethod(type, selector, castMethod<IMP>(replacement), method_getTypeEncoding(method)));
}

void doNothing(id, SEL) {}

/// The run-time updates subclasses in use when a method is added, but not when one is replaced.
void updateSubclasses(Class type) {
  class_addMethod(type, sel_registerName("platformHasReplacedMethods"), castMethod<IMP>(doNothing), "v16@0:8");
}

void replaceStringMethods() {
  const Class string = [NSString class];
  // Classes with these methods of their own; others hold no surrogates.
  const Class unicode_string = objc_getClass("GSUnicodeString");
  const Class mutable_string = objc_getClass("GSMutableString");
  const Class immutable_string = objc_getClass("GSImmutableString");
  originals.rangeOfString = replace(string, @selector(rangeOfString:), rangeOfString);
  originals.rangeOfStringOptions = replace(string, @selector(rangeOfString:options:), rangeOfStringOptions);
  originals.rangeOfStringOptionsRange = replace(string, @selector(rangeOfString:options:range:),
                                                rangeOfStringOptionsRange<&Originals::rangeOfStringOptionsRange>);
  originals.rangeInImmutableString = replace(immutable_string, @selector(rangeOfString:options:range:),
                                             rangeOfStringOptionsRange<&Originals::rangeInImmutableString>);
  originals.rangeOfStringInLocale =
      replace(string, @selector(rangeOfString:options:range:locale:), rangeOfStringInLocale);
  originals.utf8 = replace(string, @selector(UTF8String), utf8String<&Originals::utf8>);
  originals.utf8OfUnicodeString =
      replace(unicode_string, @selector(UTF8String), utf8String<&Originals::utf8OfUnicodeString>);
  originals.utf8OfMutableString =
      replace(mutable_string, @selector(UTF8String), utf8String<&Originals::utf8OfMutableString>);
  originals.data =
      replace(string, @selector(dataUsingEncoding:allowLossyConversion:), dataUsingEncoding<&Originals::data>);
  originals.dataOfImmutableString = replace(immutable_string, @selector(dataUsingEncoding:allowLossyConversion:),
                                            dataUsingEncoding<&Originals::dataOfImmutableString>);
  updateSubclasses(string);
}

void replaceUrlMethods() {
  const Class url = [NSURL class];
  replace(url, @selector(initFileURLWithPath:), initFileUrlWithPath);
  replace(url, @selector(initFileURLWithPath:isDirectory:), initFileUrlWithPathIsDirectory);
  originals.path = replace(url, @selector(path), path);
  updateSubclasses(url);
}

void closeDifferences() {
  replaceStringMethods();
  replaceUrlMethods();
  // "\" is an ordinary character in a path; the system's Foundation also takes it for a separator.
  GSPathHandling("unix");
}

}  // namespace

/// Runs when this library is loaded, after the selectors of this file are registered; an initialiser would run before.
@interface PlatformFoundationDifferences : NSObject
@end

@implementation PlatformFoundationDifferences
+ (void)load {
  closeDifferences();
}
@end
