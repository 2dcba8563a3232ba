#include "display/device_iterator.h"

#include <IOKit/graphics/IOGraphicsLib.h>
#include <dispatch/dispatch.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include "base/checked_value.h"
#include "base/device_entry.h"
#include "display/internal.h"

namespace DisplayServices {

CFStringRef device_iterator::inUUIDstr = nullptr;
CFURLRef device_iterator::profile_path = nullptr;
CFStringRef device_iterator::device_name = nullptr;
std::vector<device_iterator::DeviceRecord>* device_iterator::devices_info = nullptr;

internal::WalkWait internal::walk_wait = [](const std::future<bool>& result, std::chrono::seconds limit) {
  return result.wait_for(limit);
};

namespace {

using internal::IoObject;
using internal::leakOnPurpose;
using internal::unknownName;

constexpr std::chrono::seconds kProfileLimit{2};
constexpr std::chrono::seconds kNameLimit{10};

CFStringRef recordUuidKey() { return CFSTR("UUID"); }
CFStringRef recordNameKey() { return CFSTR("Name"); }
CFStringRef recordUrlKey() { return CFSTR("URL"); }

// --- the shared variables: plain and unlocked, used at the same time by a query and by walks that outlived theirs.
// Accesses that may race are atomic, so that a reader of a reference finds the whole object behind it.

template <typename Ref>
Ref load(const Ref& variable) {
  return __atomic_load_n(&variable, __ATOMIC_ACQUIRE);
}

template <typename Ref>
void store(Ref& variable, Ref value) {
  __atomic_store_n(&variable, value, __ATOMIC_RELEASE);
}

// --- the list of device records

/// Always null; see devices_info.
CFDictionaryRef findRecord(CFStringRef uuid) {
  if (device_iterator::devices_info == nullptr) {
    return nullptr;
  }
  for (const auto& record : *device_iterator::devices_info) {
    const auto recorded = checkedValue<CFStringRef>(record.get(), recordUuidKey(), CFStringGetTypeID());
    if (recorded != nullptr && CFEqual(recorded, uuid)) {
      return record.get();
    }
  }
  return nullptr;
}

/// Always discards the record; see devices_info.
void appendRecord(CFStringRef uuid, CFStringRef name, CFURLRef url) {
  if (device_iterator::devices_info == nullptr) {
    return;
  }
  const void* keys[] = {recordUuidKey(), recordNameKey(), recordUrlKey()};
  const void* values[] = {uuid, name, url};
  auto record = device_iterator::DeviceRecord::adopt(CFDictionaryCreate(kCFAllocatorDefault, keys, values,
                                                                        std::size(keys), &kCFTypeDictionaryKeyCallBacks,
                                                                        &kCFTypeDictionaryValueCallBacks));
  if (record) {
    device_iterator::devices_info->push_back(std::move(record));
  }
}

// --- a query

/// Makes the display with this UUID the sought one. False, and nothing changes, when there is no UUID text.
bool seek(CFUUIDRef uuid) {
  if (uuid == nullptr) {
    return false;
  }
  // Kept for the life of the process, like every one before it: a walk that outlived its query compares against it.
  const CFStringRef text = leakOnPurpose(CFUUIDCreateString(kCFAllocatorDefault, uuid));
  if (text == nullptr) {
    return false;
  }
  store(device_iterator::inUUIDstr, text);
  return true;
}

/// Walks ColorSync's devices on a queue of its own; true when the walk met the sought display within the limit. This
/// function and the block share the promise: a walk that goes on after the limit fulfils one that still exists.
bool walkMatches(std::chrono::seconds limit) {
  const auto promise = std::make_shared<std::promise<bool>>();
  const std::future<bool> result = promise->get_future();
  // Kept for the life of the process: deliberately a queue per query, so that a hung walk holds up no later one.
  auto* const queue = dispatch_queue_create("SERIAL_QUEUE", nullptr);
  if (queue == nullptr) {
    return false;
  }
  dispatch_async(queue, ^{
    ColorSyncIterateDeviceProfiles(device_iterator::deviceListIterator, promise.get());
  });
  return internal::walk_wait(result, limit) == std::future_status::ready;
}

// --- the callback

/// The promise is fulfilled already when ColorSync goes on with a walk that was told to end.
void fulfil(std::promise<bool>* promise) {
  if (promise == nullptr) {
    return;
  }
  try {
    promise->set_value(true);
  } catch (const std::future_error&) {
  }
}

// --- IOKit

/// A number of the information dictionary, cut to 32 bits; nothing when it is missing, of another type or unreadable.
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

/// Bounds the walk over services: the host is waiting, and an iterator might never end.
constexpr int kMostServices = 10'000;

}  // namespace

bool device_iterator::deviceListIterator(CFDictionaryRef entry, void* userInfo) {
  const CFStringRef sought = load(inUUIDstr);
  if (entry == nullptr || sought == nullptr) {
    return true;
  }
  const DeviceEntry values(entry, sought);
  if (!values.is_complete || !values.uuid) {
    return true;
  }
  if (values.is_display) {
    appendRecord(values.uuid.get(), values.description, values.url);
  }
  // Deliberately strict: a default profile that is not current, or a current one that is not default, never matches.
  if (!values.is_sought || !values.is_display || !values.is_default || !values.is_current) {
    return true;
  }
  // The query may have given up meanwhile; the variables then belong to the next one. A query that begins between this
  // test and the two stores would read the previous display's values, which is accepted.
  if (load(inUUIDstr) != sought) {
    return true;
  }
  // Kept for the life of the process. The reference on the name is this callback's own: the entry ends with the walk,
  // and callers borrow the name.
  store(profile_path, leakOnPurpose(static_cast<CFURLRef>(CFRetain(values.url))));
  store(device_name, leakOnPurpose(static_cast<CFStringRef>(CFRetain(values.description))));
  fulfil(static_cast<std::promise<bool>*>(userInfo));
  return false;
}

CFURLRef device_iterator::profileForCGDirectDisplayID(CGDirectDisplayID displayID) {
  // The UUID is deliberately not released.
  if (!seek(leakOnPurpose(CGDisplayCreateUUIDFromDisplayID(displayID)))) {
    return nullptr;
  }
  if (const CFDictionaryRef record = findRecord(inUUIDstr)) {
    return checkedValue<CFURLRef>(record, recordUrlKey(), CFURLGetTypeID());
  }
  return walkMatches(kProfileLimit) ? load(profile_path) : nullptr;
}

CFURLRef ProfilePathForDisplay(CGDirectDisplayID displayID) {
  store(device_iterator::device_name, CFSTR("Empty"));
  // The reference that it held is deliberately not released.
  store(device_iterator::profile_path, CFURLRef{nullptr});
  const CFURLRef url = device_iterator::profileForCGDirectDisplayID(displayID);
  // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): the caller's, although the name does not say so
  return url != nullptr ? static_cast<CFURLRef>(CFRetain(url)) : nullptr;
}

CFStringRef displayNameUsingColorSync(CFUUIDRef uuid) {
  if (!seek(uuid)) {
    return unknownName();
  }
  if (const CFDictionaryRef record = findRecord(device_iterator::inUUIDstr)) {
    const auto name = checkedValue<CFStringRef>(record, recordNameKey(), CFStringGetTypeID());
    return name != nullptr ? name : unknownName();
  }
  return walkMatches(kNameLimit) ? load(device_iterator::device_name) : unknownName();
}

io_service_t device_iterator::IOServicePortFromCGDisplayID(CGDirectDisplayID displayID) {
  auto matching = OwnedRef<CFMutableDictionaryRef>::adopt(IOServiceMatching("IODisplayConnect"));
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
    const auto info =
        OwnedRef<CFDictionaryRef>::adopt(IODisplayCreateInfoDictionary(service, kIODisplayOnlyPreferredName));
    if (info && describes(info.get(), displayID)) {
      return service;
    }
    // A service that does not match is deliberately not released.
  }
  return 0;
}

}  // namespace DisplayServices
