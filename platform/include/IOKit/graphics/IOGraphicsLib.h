// IOKit's display information, for computers that are not Macs. Any thread may call it.
#pragma once

#include <IOKit/IOKitLib.h>

CF_EXTERN_C_BEGIN

/// Of the product names, only the entry for the user's preferred language.
enum { kIODisplayOnlyPreferredName = 0x00000200 };

#define kDisplayVendorID "DisplayVendorID"
#define kDisplayProductID "DisplayProductID"
#define kDisplaySerialNumber "DisplaySerialNumber"
#define kDisplayProductName "DisplayProductName"

/// The information about a service's display, or null; the caller releases.
CF_EXPORT CFDictionaryRef IODisplayCreateInfoDictionary(io_service_t framebuffer, IOOptionBits options);

CF_EXTERN_C_END
