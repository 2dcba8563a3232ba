// The system's Foundation, with its point, size and rectangle under CoreGraphics' names, as on the Mac.
#pragma once

#define _NSPoint CGPoint
#define _NSSize CGSize
#define _NSRect CGRect
#include_next <Foundation/Foundation.h>
#undef _NSPoint
#undef _NSSize
#undef _NSRect
