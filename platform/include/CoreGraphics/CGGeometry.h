// CoreGraphics' points, sizes and rectangles. Foundation's NSRect and CGRect are one type, as on the Mac.
#pragma once

#if defined(__OBJC__) && !defined(__APPLE__)
#include <Foundation/Foundation.h>
#else
typedef double CGFloat;

struct CGPoint {
  CGFloat x;
  CGFloat y;
};
struct CGSize {
  CGFloat width;
  CGFloat height;
};
struct CGRect {
  struct CGPoint origin;
  struct CGSize size;
};
#endif

typedef struct CGPoint CGPoint;
typedef struct CGSize CGSize;
typedef struct CGRect CGRect;

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  CGRect rect;
  rect.origin.x = x;
  rect.origin.y = y;
  rect.size.width = width;
  rect.size.height = height;
  return rect;
}

/// Exact equality of both members; a NaN equals nothing.
static inline bool CGSizeEqualToSize(CGSize first, CGSize second) {
  return first.width == second.width && first.height == second.height;
}
