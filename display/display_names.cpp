// Names of displays: which IOKit service is a display's, and what the service says the product is called.
#include <IOKit/graphics/IOGraphicsLib.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "base/checked_value.h"
#include "base/owned_ref.h"
#include "display/display_services.h"
#include "display/io_object.h"
#include "display/kept.h"
#include "display/unknown_name.h"

namespace DisplayServices {
namespace {

using internal::IoObject;
using internal::kept;
using internal::unknownName;

/// A number of the information dictionary, cut to 32 bits; nothing when it is missing, no number, or unreadable.
std::optional<std::int32_t> numberOf(CFDictionaryRef info, CFStringRef key) {
  const void* value = nullptr;
  if (!CFDictionaryGetValueIfPresent(info, key, &value)) {
    return std::nullopt;
  }
  const auto number = checkedCast<CFNumberRef>(value, CFNumberGetTypeID());
  if (number == nullptr) {
    return std::nullopt;
  }
  std::int32_t result = 0;
  if (CFNumberGetValue(number, kCFNumberSInt32Type, &result)) {
    return result;
  }
  std::int64_t wide = 0;  // 32 bits without a sign, such as a serial number of 0xFFFFFFFF
  if (CFNumberGetValue(number, kCFNumberSInt64Type, &wide)) {
    return static_cast<std::int32_t>(wide);
  }
  return std::nullopt;
}

bool describes(CFDictionaryRef info, CGDirectDisplayID displayID) {
  const auto vendor = numberOf(info, CFSTR(kDisplayVendorID));
  const auto product = numberOf(info, CFSTR(kDisplayProductID));
  if (!vendor || !product) {
    return false;
  }
  const std::int32_t serial = numberOf(info, CFSTR(kDisplaySerialNumber)).value_or(0);
  return CGDisplayVendorNumber(displayID) == static_cast<std::uint32_t>(*vendor) &&
         CGDisplayModelNumber(displayID) == static_cast<std::uint32_t>(*product) &&
         CGDisplaySerialNumber(displayID) == static_cast<std::uint32_t>(serial);
}

/// The value of the first of the product names, whatever its language: IOKit was asked for the preferred language only.
/// Null when it is no string, and when there are more names than can be.
CFStringRef firstName(CFDictionaryRef names, CFIndex count) {
  constexpr CFIndex kMostNames = 10'000;  // there are fewer languages
  if (count > kMostNames) {
    return nullptr;
  }
  std::vector<const void*> keys(static_cast<std::size_t>(count));
  std::vector<const void*> values(keys.size());
  CFDictionaryGetKeysAndValues(names, keys.data(), values.data());
  return checkedCast<CFStringRef>(values.front(), CFStringGetTypeID());
}

/// What IOKit knows of the display behind a service, or null. Kept for the life of the process: a name that is returned
/// lives inside it.
CFDictionaryRef keptInfo(io_service_t service) {
  return checkedCast<CFDictionaryRef>(kept(IODisplayCreateInfoDictionary(service, kIODisplayOnlyPreferredName)),
                                      CFDictionaryGetTypeID());
}

/// An iterator that goes on and on is left at last: the host is waiting.
constexpr int kMostServices = 10'000;

}  // namespace

io_service_t device_iterator::IOServicePortFromCGDisplayID(CGDirectDisplayID displayID) {
  auto matching = checkedAdopt<CFMutableDictionaryRef>(IOServiceMatching("IODisplayConnect"), CFDictionaryGetTypeID());
  io_iterator_t existing = 0;
  // The call consumes the matching dictionary.
  if (!matching || IOServiceGetMatchingServices(kIOMasterPortDefault, matching.release(), &existing) != KERN_SUCCESS) {
    return 0;
  }
  const IoObject services = IoObject::adopt(existing);
  if (!services) {
    return 0;
  }
  for (int i = 0; i < kMostServices; ++i) {
    const io_service_t service = IOIteratorNext(services.get());
    if (service == 0) {
      return 0;
    }
    const auto info = checkedAdopt<CFDictionaryRef>(IODisplayCreateInfoDictionary(service, kIODisplayOnlyPreferredName),
                                                    CFDictionaryGetTypeID());
    if (info && describes(info.get(), displayID)) {
      return service;
    }
    // A service that does not match is deliberately not released.
  }
  return 0;
}

CFStringRef DisplayNameForID(CGDirectDisplayID displayID) {
  CFDictionaryRef info = nullptr;
  {
    const IoObject service = IoObject::adopt(device_iterator::IOServicePortFromCGDisplayID(displayID));
    if (!service) {
      return unknownName();
    }
    info = keptInfo(service.get());
  }
  const auto names = info != nullptr
                         ? checkedValue<CFDictionaryRef>(info, CFSTR(kDisplayProductName), CFDictionaryGetTypeID())
                         : nullptr;
  const CFIndex count = names != nullptr ? CFDictionaryGetCount(names) : 0;
  // Deliberately final: ColorSync is asked only about a display that has product names, of which the first is of no
  // use.
  if (count <= 0) {
    return unknownName();
  }
  const CFStringRef name = firstName(names, count);
  if (name != nullptr && CFStringGetLength(name) != 0) {
    return name;
  }
  // The UUID is deliberately not released.
  return displayNameUsingColorSync(kept(CGDisplayCreateUUIDFromDisplayID(displayID)));
}

}  // namespace DisplayServices
