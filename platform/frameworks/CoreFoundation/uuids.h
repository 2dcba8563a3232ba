// UUID objects, shared by the frameworks. Neither counted nor made to fail.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "desktop/model/desktop.h"
#include "desktop/model/export.h"

#ifdef __OBJC__
#import <Foundation/Foundation.h>
#endif

namespace platform {

/// The one object of this value, with a reference for the caller. Any thread.
PLATFORM_API CFUUIDRef makeUuid(const desktop::Uuid& bytes) __attribute__((cf_returns_retained));
PLATFORM_API desktop::Uuid bytesOf(CFUUIDRef uuid);

#ifdef __OBJC__
bool isUuid(id object);
#endif

}  // namespace platform
