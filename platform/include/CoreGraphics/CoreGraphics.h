// CoreGraphics' display and colour-space calls, for computers that are not Macs. Any thread may call them.
//
// Rectangles are in points, in global display coordinates: the origin is the upper left corner of the main display and
// y grows downwards.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>

CF_EXTERN_C_BEGIN

typedef enum CGError : int32_t {
  kCGErrorSuccess = 0,
  kCGErrorFailure = 1000,
  kCGErrorIllegalArgument = 1001,
} CGError;

typedef uint32_t CGDirectDisplayID;
#define kCGNullDirectDisplay ((CGDirectDisplayID)0)

/// Writes at most `maxDisplays` active displays, the main one first, and their number to `displayCount`. With a null
/// `activeDisplays` only the number of active displays is written.
CF_EXPORT CGError CGGetActiveDisplayList(uint32_t maxDisplays, CGDirectDisplayID* activeDisplays,
                                         uint32_t* displayCount);
/// The same, for the displays whose bounds meet `rect`.
CF_EXPORT CGError CGGetDisplaysWithRect(CGRect rect, uint32_t maxDisplays, CGDirectDisplayID* displays,
                                        uint32_t* matchingDisplayCount);
/// The empty rectangle at the origin for any number but an active display's.
CF_EXPORT CGRect CGDisplayBounds(CGDirectDisplayID display);
/// EDID's 16-bit packed manufacturer id; all three are 0xFFFFFFFF for any number but an active display's.
CF_EXPORT uint32_t CGDisplayVendorNumber(CGDirectDisplayID display);
CF_EXPORT uint32_t CGDisplayModelNumber(CGDirectDisplayID display);
/// 0 for a display without a serial number.
CF_EXPORT uint32_t CGDisplaySerialNumber(CGDirectDisplayID display);

typedef struct CGColorSpace* CGColorSpaceRef;

/// `ref` is a ColorSyncProfileRef. Null for null and for a profile that makes no colour space; the caller releases.
CF_EXPORT CGColorSpaceRef CGColorSpaceCreateWithPlatformColorSpace(const void* ref);
CF_EXPORT bool CGColorSpaceIsWideGamutRGB(CGColorSpaceRef space);

CF_EXTERN_C_END
