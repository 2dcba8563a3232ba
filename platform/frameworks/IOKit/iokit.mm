// IOKit: the display services of the current desktop.
#include <IOKit/graphics/IOGraphicsLib.h>

#import <Foundation/Foundation.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/current.h"
#include "desktop/model/language.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/Foundation/utf8_objects.h"
#include "frameworks/IOKit/io_handles.h"
#include "frameworks/hooks/calls.h"
#include "frameworks/hooks/injected_objects.h"

using platform::IoHandles;
using platform::ScopedPool;
using platform::calls::Call;
using platform::desktop::DisplayService;
namespace calls = platform::calls;

namespace {

constexpr const char* kProviderClassKey = "IOProviderClass";
constexpr const char* kDisplayConnectClass = "IODisplayConnect";

IoHandles& handles() {
  static auto* const only = new IoHandles;
  return *only;
}

NSString* text(std::string_view utf8) { return [platform::newString(utf8) autorelease]; }

bool matchesDisplays(NSDictionary* matching) {
  return [[matching objectForKey:text(kProviderClassKey)] isEqual:text(kDisplayConnectClass)];
}

// --- the information dictionary

void setNumber(NSMutableDictionary* info, const char* key, std::optional<std::uint32_t> value) {
  if (value) {
    // Signed, so that these bits are read as 32 signed bits.
    [info setObject:[NSNumber numberWithInt:static_cast<int>(*value)] forKey:text(key)];
  }
}

/// By language code, such as "en" or "en_GB".
using ProductNames = std::vector<std::pair<std::string, std::string>>;

/// The name with the greatest languageRank for the user, the first of equals; empty when there is no name.
ProductNames onlyPreferred(const ProductNames& names) {
  const auto wanted = platform::desktop::userLanguage();
  const auto rank = [&](const auto& name) {
    const auto offered = platform::desktop::languageOfLocale(name.first);
    return platform::desktop::languageRank(offered.language, offered.country, wanted);
  };
  const auto best = std::max_element(names.begin(), names.end(),
                                     [&](const auto& first, const auto& second) { return rank(first) < rank(second); });
  return best == names.end() ? ProductNames{} : ProductNames{*best};
}

NSDictionary* nameDictionary(const ProductNames& names) {
  NSMutableDictionary* const entries = [NSMutableDictionary dictionary];
  for (const auto& [language, name] : names) {
    NSString* const key = text(language);
    NSString* const value = text(name);
    if (key != nil && value != nil) {  // null: invalid UTF-8
      [entries setObject:value forKey:key];
    }
  }
  return [NSDictionary dictionaryWithDictionary:entries];
}

NSDictionary* copyInfo(const DisplayService& service, bool only_preferred_name) {
  NSMutableDictionary* const info = [NSMutableDictionary dictionary];
  setNumber(info, kDisplayVendorID, service.vendor);
  setNumber(info, kDisplayProductID, service.product);
  setNumber(info, kDisplaySerialNumber, service.serial);
  if (service.product_names) {
    const ProductNames& names = *service.product_names;
    [info setObject:nameDictionary(only_preferred_name ? onlyPreferred(names) : names)
             forKey:text(kDisplayProductName)];
  }
  return [[NSDictionary alloc] initWithDictionary:info];
}

}  // namespace

extern "C" {

const mach_port_t kIOMasterPortDefault = 0;

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  if (const auto fault = platform::retainedFault<CFMutableDictionaryRef>(calls::fault(Call::IOServiceMatching))) {
    return *fault;
  }
  if (name == nullptr) {
    return nullptr;
  }
  const ScopedPool pool;
  NSString* const provider_class = text(name);
  if (provider_class == nil) {
    return nullptr;
  }
  NSMutableDictionary* const matching = [[NSMutableDictionary alloc] init];
  [matching setObject:provider_class forKey:text(kProviderClassKey)];
  return reinterpret_cast<CFMutableDictionaryRef>(matching);
}

kern_return_t IOServiceGetMatchingServices(mach_port_t, CFDictionaryRef matching, io_iterator_t* existing) {
  const calls::Fault fault = calls::fault(Call::IOServiceGetMatchingServices);
  if (matching == nullptr) {
    return KERN_FAILURE;
  }
  const ScopedPool pool;
  [(NSDictionary*)matching autorelease];  // consumed, also when the call fails
  if (fault.fail || fault.error || existing == nullptr) {
    return fault.error.value_or(KERN_FAILURE);
  }
  if (fault.number) {
    *existing = static_cast<io_iterator_t>(*fault.number);
    return KERN_SUCCESS;
  }
  const auto arrangement = platform::desktop::current()->arrangement();
  const std::size_t count = matchesDisplays((NSDictionary*)matching) ? arrangement->services.size() : 0;
  *existing = handles().makeIterator(arrangement, count);
  return fault.late_error.value_or(KERN_SUCCESS);
}

io_object_t IOIteratorNext(io_iterator_t iterator) {
  const calls::Fault fault = calls::fault(Call::IOIteratorNext);
  if (fault.fail || fault.number) {
    return static_cast<io_object_t>(fault.number.value_or(0));
  }
  return handles().next(iterator);
}

kern_return_t IOObjectRelease(io_object_t object) {
  const calls::Fault fault = calls::fault(Call::IOObjectRelease);
  if (fault.fail || fault.error) {
    return fault.error.value_or(KERN_FAILURE);
  }
  return handles().release(object) ? KERN_SUCCESS : KERN_FAILURE;
}

CFDictionaryRef IODisplayCreateInfoDictionary(io_service_t framebuffer, IOOptionBits options) {
  const calls::Fault fault = calls::fault(Call::IODisplayCreateInfoDictionary);
  if (const auto object = platform::retainedFault<CFDictionaryRef>(fault)) {
    return *object;
  }
  const std::shared_ptr<const DisplayService> service = handles().service(framebuffer);
  if (service == nullptr || !service->has_info) {
    return nullptr;
  }
  const ScopedPool pool;
  const auto info = reinterpret_cast<CFDictionaryRef>(copyInfo(*service, (options & kIODisplayOnlyPreferredName) != 0));
  if (fault.edit == nullptr) {
    return info;
  }
  const auto edited = static_cast<CFDictionaryRef>((*fault.edit)(info));
  CFRelease(info);
  return edited;
}

}  // extern "C"
