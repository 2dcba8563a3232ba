// The part of CoreFoundation that the plugin and its tests use, for computers that are not Macs, and for Macs when they
// are built for without an SDK.
//
// Types are toll-free bridged to Foundation objects: a CFStringRef is an NSString*, a CFURLRef an NSURL*, and so on.
// Any thread may call any function; objects follow Foundation's own rules. Functions named Create or Copy return a
// reference that the caller releases; functions named Get return a borrowed one. As on the Mac, a null argument where
// an object is needed aborts the process, so that a missing guard is found here and not on a customer's Mac.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif
#define CF_EXPORT extern __attribute__((visibility("default")))

CF_EXTERN_C_BEGIN

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef unsigned int UInt32;
typedef signed int SInt32;

typedef const void* CFTypeRef;
typedef unsigned long CFTypeID;
typedef unsigned long CFHashCode;
typedef signed long CFIndex;
typedef UInt32 CFStringEncoding;

typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;
static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
  const CFRange range = {location, length};
  return range;
}

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFUUID* CFUUIDRef;
typedef struct __CFError* CFErrorRef;

CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;
CF_EXPORT const CFBooleanRef kCFBooleanTrue;
CF_EXPORT const CFBooleanRef kCFBooleanFalse;

typedef enum CFStringBuiltInEncodings : CFStringEncoding {
  kCFStringEncodingUTF8 = 0x08000100
} CFStringBuiltInEncodings;
typedef enum CFNumberType : CFIndex {
  kCFNumberSInt32Type = 3,
  kCFNumberSInt64Type = 4,
  kCFNumberDoubleType = 13
} CFNumberType;
typedef enum CFURLPathStyle : CFIndex { kCFURLPOSIXPathStyle = 0 } CFURLPathStyle;

// --- every type

CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);
CF_EXPORT Boolean CFEqual(CFTypeRef first, CFTypeRef second);
/// Releases `object` when the current autorelease pool is drained, and returns it.
CF_EXPORT CFTypeRef CFAutorelease(CFTypeRef object);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);

CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT CFTypeID CFDataGetTypeID(void);
CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);
CF_EXPORT CFTypeID CFNumberGetTypeID(void);
CF_EXPORT CFTypeID CFStringGetTypeID(void);
CF_EXPORT CFTypeID CFURLGetTypeID(void);
CF_EXPORT CFTypeID CFUUIDGetTypeID(void);

// --- strings

/// A string that lives for the life of the process, one per text; `text` is ASCII.
#ifdef __APPLE__
#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))
#else
#define CFSTR(text) __CFStringMakeConstantString("" text "")
#endif
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                              CFStringEncoding encoding, Boolean isExternalRepresentation);
/// May begin or end with one half of a surrogate pair.
CF_EXPORT CFStringRef CFStringCreateWithSubstring(CFAllocatorRef allocator, CFStringRef string, CFRange range);
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
/// Bytes that `length` UTF-16 units can take at most in `encoding`.
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);

// --- URLs

CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                                 CFURLPathStyle pathStyle, Boolean isDirectory);
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle pathStyle);
CF_EXPORT CFStringRef CFURLGetString(CFURLRef url);

// --- data

CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

// --- dictionaries

typedef const void* (*CFDictionaryRetainCallBack)(CFAllocatorRef allocator, const void* value);
typedef void (*CFDictionaryReleaseCallBack)(CFAllocatorRef allocator, const void* value);
typedef CFStringRef (*CFDictionaryCopyDescriptionCallBack)(const void* value);
typedef Boolean (*CFDictionaryEqualCallBack)(const void* value1, const void* value2);
typedef CFHashCode (*CFDictionaryHashCallBack)(const void* value);

typedef struct {
  CFIndex version;
  CFDictionaryRetainCallBack retain;
  CFDictionaryReleaseCallBack release;
  CFDictionaryCopyDescriptionCallBack copyDescription;
  CFDictionaryEqualCallBack equal;
  CFDictionaryHashCallBack hash;
} CFDictionaryKeyCallBacks;

typedef struct {
  CFIndex version;
  CFDictionaryRetainCallBack retain;
  CFDictionaryReleaseCallBack release;
  CFDictionaryCopyDescriptionCallBack copyDescription;
  CFDictionaryEqualCallBack equal;
} CFDictionaryValueCallBacks;

/// The only callbacks that the dictionary functions here accept: keys and values are objects, retained by the
/// dictionary.
CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                             CFIndex numValues, const CFDictionaryKeyCallBacks* keyCallBacks,
                                             const CFDictionaryValueCallBacks* valueCallBacks);
CF_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                           const CFDictionaryKeyCallBacks* keyCallBacks,
                                                           const CFDictionaryValueCallBacks* valueCallBacks);
CF_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
CF_EXPORT CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
CF_EXPORT const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
CF_EXPORT Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key, const void** value);
CF_EXPORT void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void** values);

// --- numbers

CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

// --- UUIDs: one shared object per value, so equal UUIDs are equal references

typedef struct {
  UInt8 byte0, byte1, byte2, byte3, byte4, byte5, byte6, byte7;
  UInt8 byte8, byte9, byte10, byte11, byte12, byte13, byte14, byte15;
} CFUUIDBytes;

CF_EXPORT CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef allocator, CFUUIDBytes bytes);
/// Null for no text. What precedes the first digit is skipped, and what is missing or not a digit is 0.
CF_EXPORT CFUUIDRef CFUUIDCreateFromString(CFAllocatorRef allocator, CFStringRef text);
CF_EXPORT CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid);
/// The canonical text: 36 characters, upper case.
CF_EXPORT CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef uuid);

CF_EXTERN_C_END
