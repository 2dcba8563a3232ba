// The system's Foundation, with its point, size and rectangle under CoreGraphics' names, as on the Mac, and with the
// version query that it lacks.
#pragma once

#define _NSPoint CGPoint
#define _NSSize CGSize
#define _NSRect CGRect
#include_next <Foundation/Foundation.h>
#undef _NSPoint
#undef _NSSize
#undef _NSRect

typedef struct {
  NSInteger majorVersion;
  NSInteger minorVersion;
  NSInteger patchVersion;
} NSOperatingSystemVersion;

@interface NSProcessInfo (OperatingSystemVersion)
/// True when the frameworks are those of this version of macOS or a later one (frameworks/Foundation/system_version.h).
- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version;
@end
