// IOKit's service matching, for computers that are not Macs. Any thread may call it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

typedef uint32_t mach_port_t;
typedef int kern_return_t;
typedef mach_port_t io_object_t;
typedef io_object_t io_iterator_t;
typedef io_object_t io_service_t;
typedef UInt32 IOOptionBits;

enum { KERN_SUCCESS = 0, KERN_FAILURE = 5 };

CF_EXPORT const mach_port_t kIOMasterPortDefault;

/// A dictionary that matches services of the class `name`; IOServiceGetMatchingServices consumes it.
CF_EXPORT CFMutableDictionaryRef IOServiceMatching(const char* name);
/// Consumes `matching`. On success the caller releases `*existing`.
CF_EXPORT kern_return_t IOServiceGetMatchingServices(mach_port_t mainPort, CFDictionaryRef matching,
                                                     io_iterator_t* existing);
/// The next object, which the caller releases, or 0.
CF_EXPORT io_object_t IOIteratorNext(io_iterator_t iterator);
CF_EXPORT kern_return_t IOObjectRelease(io_object_t object);

CF_EXTERN_C_END
