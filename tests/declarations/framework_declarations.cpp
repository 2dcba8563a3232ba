// What the plugin relies on in the frameworks' headers, asserted at compile time: function types, type definitions,
// struct layouts, constants and macros. The same assertions are compiled against platform/include over GNUstep's
// Foundation, against platform/include over the Foundation of cmake/macos/include, and against Apple's SDK, so that
// none of them drifts apart. framework_declarations.mm compiles this file again as Objective-C++.
#include <Block.h>
#include <ColorSync/ColorSync.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <IOKit/IOKitLib.h>
#include <IOKit/graphics/IOGraphicsLib.h>
#include <dispatch/dispatch.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <type_traits>

// NAME is a function of this type, or a variable declared with it.
#define DECLARED(name, ...) static_assert(std::is_same_v<decltype(name), __VA_ARGS__>, #name)
// NAME is a type definition for, or the same type as, this one.
#define TYPE(name, ...) static_assert(std::is_same_v<name, __VA_ARGS__>, #name)
// NAME is an enumeration over this integer type.
#define ENUMERATION(name, ...) \
  static_assert(std::is_enum_v<name> && std::is_same_v<std::underlying_type_t<name>, __VA_ARGS__>, #name)
// The constant NAME has this value, and the type TYPE takes it without a cast.
#define CONSTANT(name, type, value) \
  static_assert(std::is_convertible_v<decltype(name), type> && (name) == (value), #name)
#define MEMBER(record, name, type, offset)                                                                  \
  static_assert(std::is_same_v<decltype(record::name), type> && offsetof(record, name) == (offset), #record \
                ":"                                                                                         \
                ":" #name)
#define TEXT(name, value) static_assert(std::string_view(name) == (value), #name)

// A deprecated name that the plugin uses is still one that it declares.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

// --- CoreFoundation: types

TYPE(Boolean, unsigned char);
TYPE(UInt8, unsigned char);
TYPE(UInt32, unsigned int);
TYPE(SInt32, signed int);
TYPE(CFTypeRef, const void*);
TYPE(CFTypeID, unsigned long);
TYPE(CFHashCode, unsigned long);
TYPE(CFIndex, signed long);
TYPE(CFStringEncoding, UInt32);

MEMBER(CFRange, location, CFIndex, 0);
MEMBER(CFRange, length, CFIndex, 8);
static_assert(sizeof(CFRange) == 16);

TYPE(CFAllocatorRef, const struct __CFAllocator*);
TYPE(CFStringRef, const struct __CFString*);
TYPE(CFURLRef, const struct __CFURL*);
TYPE(CFDataRef, const struct __CFData*);
TYPE(CFDictionaryRef, const struct __CFDictionary*);
TYPE(CFMutableDictionaryRef, struct __CFDictionary*);
TYPE(CFNumberRef, const struct __CFNumber*);
TYPE(CFBooleanRef, const struct __CFBoolean*);
TYPE(CFUUIDRef, const struct __CFUUID*);
TYPE(CFErrorRef, struct __CFError*);

ENUMERATION(CFStringBuiltInEncodings, CFStringEncoding);
CONSTANT(kCFStringEncodingUTF8, CFStringEncoding, 0x08000100);
ENUMERATION(CFNumberType, CFIndex);
CONSTANT(kCFNumberSInt32Type, CFNumberType, 3);
CONSTANT(kCFNumberSInt64Type, CFNumberType, 4);
CONSTANT(kCFNumberDoubleType, CFNumberType, 13);
ENUMERATION(CFURLPathStyle, CFIndex);
CONSTANT(kCFURLPOSIXPathStyle, CFURLPathStyle, 0);

DECLARED(kCFAllocatorDefault, const CFAllocatorRef);
DECLARED(kCFBooleanTrue, const CFBooleanRef);
DECLARED(kCFBooleanFalse, const CFBooleanRef);

// --- CoreFoundation: every type

DECLARED(CFRetain, CFTypeRef(CFTypeRef));
DECLARED(CFRelease, void(CFTypeRef));
DECLARED(CFGetRetainCount, CFIndex(CFTypeRef));
DECLARED(CFEqual, Boolean(CFTypeRef, CFTypeRef));
DECLARED(CFAutorelease, CFTypeRef(CFTypeRef));
DECLARED(CFGetTypeID, CFTypeID(CFTypeRef));
DECLARED(CFBooleanGetTypeID, CFTypeID());
DECLARED(CFDataGetTypeID, CFTypeID());
DECLARED(CFDictionaryGetTypeID, CFTypeID());
DECLARED(CFNumberGetTypeID, CFTypeID());
DECLARED(CFStringGetTypeID, CFTypeID());
DECLARED(CFURLGetTypeID, CFTypeID());
DECLARED(CFUUIDGetTypeID, CFTypeID());

// --- CoreFoundation: strings, URLs, data

DECLARED(CFSTR("text"), CFStringRef);
DECLARED(__CFStringMakeConstantString, CFStringRef(const char*));
DECLARED(CFStringCreateWithBytes, CFStringRef(CFAllocatorRef, const UInt8*, CFIndex, CFStringEncoding, Boolean));
DECLARED(CFRangeMake, CFRange(CFIndex, CFIndex));
DECLARED(CFStringCreateWithSubstring, CFStringRef(CFAllocatorRef, CFStringRef, CFRange));
DECLARED(CFStringGetLength, CFIndex(CFStringRef));
DECLARED(CFStringGetMaximumSizeForEncoding, CFIndex(CFIndex, CFStringEncoding));
DECLARED(CFStringGetCString, Boolean(CFStringRef, char*, CFIndex, CFStringEncoding));
DECLARED(CFURLCreateWithFileSystemPath, CFURLRef(CFAllocatorRef, CFStringRef, CFURLPathStyle, Boolean));
DECLARED(CFURLCopyFileSystemPath, CFStringRef(CFURLRef, CFURLPathStyle));
DECLARED(CFURLGetString, CFStringRef(CFURLRef));
DECLARED(CFDataCreate, CFDataRef(CFAllocatorRef, const UInt8*, CFIndex));
DECLARED(CFDataGetLength, CFIndex(CFDataRef));
DECLARED(CFDataGetBytePtr, const UInt8*(CFDataRef));

// --- CoreFoundation: dictionaries and numbers

TYPE(CFDictionaryRetainCallBack, const void* (*)(CFAllocatorRef, const void*));
TYPE(CFDictionaryReleaseCallBack, void (*)(CFAllocatorRef, const void*));
TYPE(CFDictionaryCopyDescriptionCallBack, CFStringRef (*)(const void*));
TYPE(CFDictionaryEqualCallBack, Boolean (*)(const void*, const void*));
TYPE(CFDictionaryHashCallBack, CFHashCode (*)(const void*));

MEMBER(CFDictionaryKeyCallBacks, version, CFIndex, 0);
MEMBER(CFDictionaryKeyCallBacks, retain, CFDictionaryRetainCallBack, 8);
MEMBER(CFDictionaryKeyCallBacks, release, CFDictionaryReleaseCallBack, 16);
MEMBER(CFDictionaryKeyCallBacks, copyDescription, CFDictionaryCopyDescriptionCallBack, 24);
MEMBER(CFDictionaryKeyCallBacks, equal, CFDictionaryEqualCallBack, 32);
MEMBER(CFDictionaryKeyCallBacks, hash, CFDictionaryHashCallBack, 40);
static_assert(sizeof(CFDictionaryKeyCallBacks) == 48);

MEMBER(CFDictionaryValueCallBacks, version, CFIndex, 0);
MEMBER(CFDictionaryValueCallBacks, retain, CFDictionaryRetainCallBack, 8);
MEMBER(CFDictionaryValueCallBacks, release, CFDictionaryReleaseCallBack, 16);
MEMBER(CFDictionaryValueCallBacks, copyDescription, CFDictionaryCopyDescriptionCallBack, 24);
MEMBER(CFDictionaryValueCallBacks, equal, CFDictionaryEqualCallBack, 32);
static_assert(sizeof(CFDictionaryValueCallBacks) == 40);

DECLARED(kCFTypeDictionaryKeyCallBacks, const CFDictionaryKeyCallBacks);
DECLARED(kCFTypeDictionaryValueCallBacks, const CFDictionaryValueCallBacks);

DECLARED(CFDictionaryCreate, CFDictionaryRef(CFAllocatorRef, const void**, const void**, CFIndex,
                                             const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*));
DECLARED(CFDictionaryCreateMutable, CFMutableDictionaryRef(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks*,
                                                           const CFDictionaryValueCallBacks*));
DECLARED(CFDictionarySetValue, void(CFMutableDictionaryRef, const void*, const void*));
DECLARED(CFDictionaryGetCount, CFIndex(CFDictionaryRef));
DECLARED(CFDictionaryGetValue, const void*(CFDictionaryRef, const void*));
DECLARED(CFDictionaryGetValueIfPresent, Boolean(CFDictionaryRef, const void*, const void**));
DECLARED(CFDictionaryGetKeysAndValues, void(CFDictionaryRef, const void**, const void**));

DECLARED(CFNumberCreate, CFNumberRef(CFAllocatorRef, CFNumberType, const void*));
DECLARED(CFNumberGetValue, Boolean(CFNumberRef, CFNumberType, void*));

// --- CoreFoundation: UUIDs

MEMBER(CFUUIDBytes, byte0, UInt8, 0);
MEMBER(CFUUIDBytes, byte1, UInt8, 1);
MEMBER(CFUUIDBytes, byte2, UInt8, 2);
MEMBER(CFUUIDBytes, byte3, UInt8, 3);
MEMBER(CFUUIDBytes, byte4, UInt8, 4);
MEMBER(CFUUIDBytes, byte5, UInt8, 5);
MEMBER(CFUUIDBytes, byte6, UInt8, 6);
MEMBER(CFUUIDBytes, byte7, UInt8, 7);
MEMBER(CFUUIDBytes, byte8, UInt8, 8);
MEMBER(CFUUIDBytes, byte9, UInt8, 9);
MEMBER(CFUUIDBytes, byte10, UInt8, 10);
MEMBER(CFUUIDBytes, byte11, UInt8, 11);
MEMBER(CFUUIDBytes, byte12, UInt8, 12);
MEMBER(CFUUIDBytes, byte13, UInt8, 13);
MEMBER(CFUUIDBytes, byte14, UInt8, 14);
MEMBER(CFUUIDBytes, byte15, UInt8, 15);
static_assert(sizeof(CFUUIDBytes) == 16);

DECLARED(CFUUIDCreateFromUUIDBytes, CFUUIDRef(CFAllocatorRef, CFUUIDBytes));
DECLARED(CFUUIDCreateFromString, CFUUIDRef(CFAllocatorRef, CFStringRef));
DECLARED(CFUUIDGetUUIDBytes, CFUUIDBytes(CFUUIDRef));
DECLARED(CFUUIDCreateString, CFStringRef(CFAllocatorRef, CFUUIDRef));

// --- CoreGraphics: geometry

TYPE(CGFloat, double);
MEMBER(CGPoint, x, CGFloat, 0);
MEMBER(CGPoint, y, CGFloat, 8);
static_assert(sizeof(CGPoint) == 16);
MEMBER(CGSize, width, CGFloat, 0);
MEMBER(CGSize, height, CGFloat, 8);
static_assert(sizeof(CGSize) == 16);
MEMBER(CGRect, origin, CGPoint, 0);
MEMBER(CGRect, size, CGSize, 16);
static_assert(sizeof(CGRect) == 32);
TYPE(struct CGPoint, CGPoint);
TYPE(struct CGSize, CGSize);
TYPE(struct CGRect, CGRect);
DECLARED(CGRectMake, CGRect(CGFloat, CGFloat, CGFloat, CGFloat));
DECLARED(CGSizeEqualToSize, bool(CGSize, CGSize));

// --- CoreGraphics: displays and colour spaces

ENUMERATION(CGError, std::int32_t);
CONSTANT(kCGErrorSuccess, CGError, 0);
CONSTANT(kCGErrorFailure, CGError, 1000);
CONSTANT(kCGErrorIllegalArgument, CGError, 1001);
TYPE(CGDirectDisplayID, std::uint32_t);
CONSTANT(kCGNullDirectDisplay, CGDirectDisplayID, 0);
DECLARED(kCGNullDirectDisplay, CGDirectDisplayID);

DECLARED(CGGetActiveDisplayList, CGError(std::uint32_t, CGDirectDisplayID*, std::uint32_t*));
DECLARED(CGGetDisplaysWithRect, CGError(CGRect, std::uint32_t, CGDirectDisplayID*, std::uint32_t*));
DECLARED(CGDisplayBounds, CGRect(CGDirectDisplayID));
DECLARED(CGDisplayVendorNumber, std::uint32_t(CGDirectDisplayID));
DECLARED(CGDisplayModelNumber, std::uint32_t(CGDirectDisplayID));
DECLARED(CGDisplaySerialNumber, std::uint32_t(CGDirectDisplayID));

TYPE(CGColorSpaceRef, struct CGColorSpace*);
DECLARED(CGColorSpaceCreateWithPlatformColorSpace, CGColorSpaceRef(const void*));
DECLARED(CGColorSpaceIsWideGamutRGB, bool(CGColorSpaceRef));

// --- ColorSync

TYPE(ColorSyncProfileRef, const struct ColorSyncProfile*);
DECLARED(kColorSyncDeviceClass, CFStringRef);
DECLARED(kColorSyncDeviceID, CFStringRef);
DECLARED(kColorSyncDeviceDescription, CFStringRef);
DECLARED(kColorSyncDeviceProfileIsDefault, CFStringRef);
DECLARED(kColorSyncDeviceProfileIsCurrent, CFStringRef);
DECLARED(kColorSyncDeviceProfileURL, CFStringRef);
DECLARED(kColorSyncDisplayDeviceClass, CFStringRef);
DECLARED(kColorSyncDeviceDefaultProfileID, CFStringRef);
DECLARED(kColorSyncProfileClass, CFStringRef);
DECLARED(kColorSyncProfileDescription, CFStringRef);
DECLARED(kColorSyncProfileURL, CFStringRef);
DECLARED(kColorSyncSigDisplayClass, CFStringRef);

TYPE(ColorSyncDeviceProfileIterateCallback, bool (*)(CFDictionaryRef, void*));
DECLARED(ColorSyncIterateDeviceProfiles, void(ColorSyncDeviceProfileIterateCallback, void*));
DECLARED(ColorSyncDeviceSetCustomProfiles, bool(CFStringRef, CFUUIDRef, CFDictionaryRef));
TYPE(ColorSyncProfileIterateCallback, bool (*)(CFDictionaryRef, void*));
DECLARED(ColorSyncIterateInstalledProfiles, void(ColorSyncProfileIterateCallback, std::uint32_t*, void*, CFErrorRef*));
DECLARED(ColorSyncProfileGetTypeID, CFTypeID());
DECLARED(ColorSyncProfileCreateWithURL, ColorSyncProfileRef(CFURLRef, CFErrorRef*));
DECLARED(ColorSyncProfileCopyTag, CFDataRef(ColorSyncProfileRef, CFStringRef));
DECLARED(CGDisplayCreateUUIDFromDisplayID, CFUUIDRef(std::uint32_t));
DECLARED(CGDisplayGetDisplayIDFromUUID, std::uint32_t(CFUUIDRef));

// --- IOKit

TYPE(mach_port_t, unsigned int);
TYPE(kern_return_t, int);
TYPE(io_object_t, mach_port_t);
TYPE(io_iterator_t, io_object_t);
TYPE(io_service_t, io_object_t);
TYPE(IOOptionBits, UInt32);
CONSTANT(KERN_SUCCESS, kern_return_t, 0);
CONSTANT(KERN_FAILURE, kern_return_t, 5);
DECLARED(kIOMasterPortDefault, const mach_port_t);
DECLARED(IOServiceMatching, CFMutableDictionaryRef(const char*));
DECLARED(IOServiceGetMatchingServices, kern_return_t(mach_port_t, CFDictionaryRef, io_iterator_t*));
DECLARED(IOIteratorNext, io_object_t(io_iterator_t));
DECLARED(IOObjectRelease, kern_return_t(io_object_t));

CONSTANT(kIODisplayOnlyPreferredName, IOOptionBits, 0x200);
TEXT(kDisplayVendorID, "DisplayVendorID");
TEXT(kDisplayProductID, "DisplayProductID");
TEXT(kDisplaySerialNumber, "DisplaySerialNumber");
TEXT(kDisplayProductName, "DisplayProductName");
DECLARED(IODisplayCreateInfoDictionary, CFDictionaryRef(io_service_t, IOOptionBits));

// --- blocks

DECLARED(_Block_copy, void*(const void*));
DECLARED(_Block_release, void(const void*));
DECLARED(Block_copy(static_cast<void (^)(int)>(nullptr)), void (^)(int));
DECLARED(Block_release(static_cast<void (^)(int)>(nullptr)), void);

// --- libdispatch

#ifndef __OBJC__  // on the Mac, queues are objects to Objective-C
TYPE(dispatch_queue_t, struct dispatch_queue_s*);
TYPE(dispatch_queue_attr_t, struct dispatch_queue_attr_s*);
#endif
TYPE(dispatch_block_t, void (^)());
DECLARED(dispatch_queue_create, dispatch_queue_t(const char*, dispatch_queue_attr_t) noexcept);
DECLARED(dispatch_async, void(dispatch_queue_t, dispatch_block_t) noexcept);

// --- AppKit and Foundation

#ifdef __OBJC__
#import <AppKit/AppKit.h>

TYPE(NSPoint, CGPoint);
TYPE(NSSize, CGSize);
TYPE(NSRect, CGRect);
DECLARED([NSScreen screens], NSArray<NSScreen*>*);
DECLARED([NSScreen mainScreen], NSScreen*);
DECLARED([[NSScreen mainScreen] frame], NSRect);
DECLARED([[NSScreen mainScreen] backingScaleFactor], CGFloat);
static_assert(std::is_convertible_v<NSScreen*, NSObject*>, "NSScreen");

MEMBER(NSOperatingSystemVersion, majorVersion, NSInteger, 0);
MEMBER(NSOperatingSystemVersion, minorVersion, NSInteger, 8);
MEMBER(NSOperatingSystemVersion, patchVersion, NSInteger, 16);
DECLARED([NSProcessInfo processInfo], NSProcessInfo*);
DECLARED([[NSProcessInfo processInfo] isOperatingSystemAtLeastVersion:NSOperatingSystemVersion()], BOOL);

MEMBER(NSRange, location, NSUInteger, 0);
MEMBER(NSRange, length, NSUInteger, 8);
TYPE(struct _NSRange, NSRange);
CONSTANT(NSNotFound, NSInteger, std::numeric_limits<NSInteger>::max());
MEMBER(NSFastEnumerationState, state, unsigned long, 0);
MEMBER(NSFastEnumerationState, itemsPtr, id*, 8);
MEMBER(NSFastEnumerationState, mutationsPtr, unsigned long*, 16);
MEMBER(NSFastEnumerationState, extra, unsigned long[5], 24);
CONSTANT(NSASCIIStringEncoding, NSStringEncoding, 1);
CONSTANT(NSMacOSRomanStringEncoding, NSStringEncoding, 30);
CONSTANT(NSUTF16BigEndianStringEncoding, NSStringEncoding, 0x90000100);

NSArray* anyArray();
NSString* anyString();
NSURL* anyUrl();
DECLARED([anyArray() count], NSUInteger);
DECLARED([anyArray() objectAtIndex:0], id);
DECLARED([anyArray() countByEnumeratingWithState:nullptr objects:nullptr count:0], NSUInteger);
static_assert(std::is_convertible_v<decltype([NSString stringWithUTF8String:""]), NSString*>, "stringWithUTF8String:");
DECLARED([anyString() UTF8String], const char*);
DECLARED([anyString() dataUsingEncoding:NSASCIIStringEncoding allowLossyConversion:YES], NSData*);
DECLARED([anyString() containsString:anyString()], BOOL);
DECLARED([anyString() rangeOfString:anyString()], NSRange);
DECLARED([NSURL fileURLWithPath:anyString()], NSURL*);
DECLARED([NSURL fileURLWithPath:anyString() isDirectory:NO], NSURL*);
DECLARED([anyUrl() lastPathComponent], NSString*);
DECLARED([anyUrl() path], NSString*);
static_assert(std::is_convertible_v<decltype([NSLocale ISOCountryCodes]), NSArray*>, "ISOCountryCodes");
static_assert(std::is_convertible_v<decltype([NSLocale ISOLanguageCodes]), NSArray*>, "ISOLanguageCodes");
#endif
