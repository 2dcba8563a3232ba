#include "strings/string_services.h"

#import <Foundation/Foundation.h>

namespace {

NSString* bridged(CFStringRef string) { return (NSString*)string; }
NSURL* bridged(CFURLRef url) { return (NSURL*)url; }
CFStringRef bridged(NSString* string) { return (CFStringRef)string; }
CFURLRef bridged(NSURL* url) { return (CFURLRef)url; }

CFDataRef converted(CFStringRef string, NSStringEncoding encoding, BOOL lossy) {
  return (CFDataRef)[bridged(string) dataUsingEncoding:encoding allowLossyConversion:lossy];
}

/// Null when the platform has no list.
CFStringRef firstOf(NSArray* codes) {
  return [codes count] > 0 ? bridged((NSString*)[codes objectAtIndex:0]) : nullptr;
}

NSString* stringOf(const char* text) { return text != nullptr ? [NSString stringWithUTF8String:text] : nil; }

/// Whether the system has containsString:. The version query is as old as that method: a system without it is older.
bool hasContainsString() {
  if (![NSProcessInfo instancesRespondToSelector:@selector(isOperatingSystemAtLeastVersion:)]) {
    return false;
  }
  const NSOperatingSystemVersion yosemite = {10, 10, 0};
  return [[NSProcessInfo processInfo] isOperatingSystemAtLeastVersion:yosemite];
}

}  // namespace

namespace StringServices {

CFStringRef LastPathComponent(CFURLRef url) { return bridged([bridged(url) lastPathComponent]); }

CFURLRef CFStringToCFURL(CFStringRef path) {
  return path != nullptr ? bridged([NSURL fileURLWithPath:bridged(path) isDirectory:NO]) : nullptr;
}

CFDataRef CFStringRefToUTF16BE(CFStringRef string) { return converted(string, NSUTF16BigEndianStringEncoding, NO); }

CFDataRef CFStringRefToASCII(CFStringRef string) { return converted(string, NSASCIIStringEncoding, YES); }

CFDataRef CFStringRefToMac(CFStringRef string) { return converted(string, NSMacOSRomanStringEncoding, YES); }

CFStringRef CountryCode() { return firstOf([NSLocale ISOCountryCodes]); }

CFStringRef LanguageCode() { return firstOf([NSLocale ISOLanguageCodes]); }

CFStringRef UTF8StringToCFString(const char* text) { return bridged(stringOf(text)); }

const char* CFURLRefToPOSIXPath(CFURLRef url) { return [[bridged(url) path] UTF8String]; }

CFURLRef POSIXPathToCFURLRef(const char* path) {
  // Without a hint whether it is a directory, deliberately: unlike CFStringToCFURL, this reads the file system.
  NSString* const string = stringOf(path);
  return string != nil ? bridged([NSURL fileURLWithPath:string]) : nullptr;
}

const char* CFStringRefToUTF8String(CFStringRef string) { return [bridged(string) UTF8String]; }

bool CFStringRefContains(CFStringRef text, CFStringRef part) {
  if (part == nullptr) {
    return false;
  }
  if (hasContainsString()) {
    return [bridged(text) containsString:bridged(part)];
  }
  return [bridged(text) rangeOfString:bridged(part)].location != NSNotFound;
}

}  // namespace StringServices
