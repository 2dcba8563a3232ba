// Foundation for a macOS build without an SDK: the classes and messages that the plugin uses, over the Objective-C
// runtime's own headers. tests/declarations asserts it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>
#include <limits.h>
#import <objc/NSObject.h>

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;

typedef struct _NSRange {
  NSUInteger location;
  NSUInteger length;
} NSRange;
static const NSInteger NSNotFound = NSIntegerMax;

typedef struct {
  unsigned long state;
  id __unsafe_unretained* itemsPtr;
  unsigned long* mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;

typedef struct {
  NSInteger majorVersion;
  NSInteger minorVersion;
  NSInteger patchVersion;
} NSOperatingSystemVersion;

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding {
  NSASCIIStringEncoding = 1,
  NSMacOSRomanStringEncoding = 30,
  NSUTF16BigEndianStringEncoding = 0x90000100,
};

@class NSData;

@interface NSArray<Element> : NSObject
- (NSUInteger)count;
- (Element)objectAtIndex:(NSUInteger)index;
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)length;
@end

@interface NSString : NSObject
+ (instancetype)stringWithUTF8String:(const char*)text;
- (const char*)UTF8String;
- (NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy;
- (BOOL)containsString:(NSString*)part;
- (NSRange)rangeOfString:(NSString*)part;
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path;
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory;
- (NSString*)lastPathComponent;
- (NSString*)path;
@end

@interface NSLocale : NSObject
+ (NSArray<NSString*>*)ISOCountryCodes;
+ (NSArray<NSString*>*)ISOLanguageCodes;
@end

@interface NSProcessInfo : NSObject
+ (NSProcessInfo*)processInfo;
- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version;
@end
