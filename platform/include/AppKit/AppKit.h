// AppKit's screens, for computers that are not Macs. Main thread only, as on the Mac; nothing here enforces it.
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

/// A screen. Frames are in points; the origin is the lower left corner of the main screen and y grows upwards.
@interface NSScreen : NSObject {
 @private
  NSRect _frame;
  CGFloat _backingScaleFactor;
}
/// All screens, the one with the origin first; empty without a desktop.
+ (NSArray<NSScreen*>*)screens;
/// Nil without a desktop.
+ (NSScreen*)mainScreen;
- (NSRect)frame;
/// Pixels per point.
- (CGFloat)backingScaleFactor;
@end
