#include "display/device_iterator.h"

#include <dispatch/dispatch.h>

#include <chrono>
#include <future>
#include <iterator>
#include <memory>
#include <utility>

#include "base/checked_value.h"
#include "display/answer_wait.h"
#include "display/display_services.h"
#include "display/kept.h"
#include "display/unknown_name.h"

namespace DisplayServices {

CFStringRef device_iterator::inUUIDstr = nullptr;
CFURLRef device_iterator::profile_path = nullptr;
CFStringRef device_iterator::device_name = nullptr;
std::vector<device_iterator::DeviceRecord>* device_iterator::devices_info = nullptr;

internal::AnswerWait internal::answer_wait = [](const std::future<bool>& answer, std::chrono::seconds limit) {
  return answer.wait_for(limit);
};

namespace {

using internal::kept;
using internal::unknownName;

constexpr std::chrono::seconds kProfileLimit{2};
constexpr std::chrono::seconds kNameLimit{10};

CFStringRef recordUuidKey() { return CFSTR("UUID"); }
CFStringRef recordNameKey() { return CFSTR("Name"); }
CFStringRef recordUrlKey() { return CFSTR("URL"); }

// --- the shared variables: plain and unlocked, used by a query and by walks that outlived theirs at the same time.
// Each access is atomic where another thread may be at it, so that whoever reads a reference finds the whole object
// behind it.

template <typename Ref>
Ref load(const Ref& variable) {
  return __atomic_load_n(&variable, __ATOMIC_ACQUIRE);
}

template <typename Ref>
void store(Ref& variable, Ref value) {
  __atomic_store_n(&variable, value, __ATOMIC_RELEASE);
}

// --- the list of device records

/// Null while there is no list, which is always.
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

/// Discards the record while there is no list, which is always.
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

/// Makes the display with this UUID the one that is sought. False, and nothing changes, when there is no UUID text.
bool seek(CFUUIDRef uuid) {
  if (checkedCast<CFUUIDRef>(uuid, CFUUIDGetTypeID()) == nullptr) {
    return false;
  }
  // Kept for the life of the process, like every one before it: a walk that outlived its query compares against it.
  const auto text = checkedCast<CFStringRef>(kept(CFUUIDCreateString(kCFAllocatorDefault, uuid)), CFStringGetTypeID());
  if (text == nullptr) {
    return false;
  }
  store(device_iterator::inUUIDstr, text);
  return true;
}

/// Walks ColorSync's devices on a queue of its own; true when the walk met the sought display within the limit. The
/// promise belongs to this function and to the block together: a walk that goes on after the limit fulfils a promise
/// that is still there, and that nobody waits on.
bool walkMatches(std::chrono::seconds limit) {
  const auto promise = std::make_shared<std::promise<bool>>();
  const std::future<bool> answer = promise->get_future();
  // Kept for the life of the process: deliberately a queue per query, so that a walk that hangs holds up no later one.
  auto* const queue = dispatch_queue_create("SERIAL_QUEUE", nullptr);
  if (queue == nullptr) {
    return false;
  }
  dispatch_async(queue, ^{
    ColorSyncIterateDeviceProfiles(device_iterator::deviceListIterator, promise.get());
  });
  return internal::answer_wait(answer, limit) == std::future_status::ready;
}

// --- the callback

/// What the callback reads from one entry; each value null when it is missing or of another type.
struct Entry {
  explicit Entry(CFDictionaryRef entry)
      : device_class(checkedValue<CFStringRef>(entry, kColorSyncDeviceClass, CFStringGetTypeID())),
        device_id(checkedValue<CFUUIDRef>(entry, kColorSyncDeviceID, CFUUIDGetTypeID())),
        description(checkedValue<CFStringRef>(entry, kColorSyncDeviceDescription, CFStringGetTypeID())),
        is_default(checkedValue<CFBooleanRef>(entry, kColorSyncDeviceProfileIsDefault, CFBooleanGetTypeID())),
        is_current(checkedValue<CFBooleanRef>(entry, kColorSyncDeviceProfileIsCurrent, CFBooleanGetTypeID())),
        url(checkedValue<CFURLRef>(entry, kColorSyncDeviceProfileURL, CFURLGetTypeID())) {}

  bool isComplete() const {
    return device_class != nullptr && device_id != nullptr && description != nullptr && is_default != nullptr &&
           is_current != nullptr && url != nullptr;
  }

  CFStringRef device_class;
  CFUUIDRef device_id;
  CFStringRef description;
  CFBooleanRef is_default;
  CFBooleanRef is_current;
  CFURLRef url;
};

/// A ColorSync that goes on with a walk that was told to end meets a promise that is fulfilled already.
void fulfil(std::promise<bool>* promise) {
  if (promise == nullptr) {
    return;
  }
  try {
    promise->set_value(true);
  } catch (const std::future_error&) {
  }
}

}  // namespace

bool device_iterator::deviceListIterator(CFDictionaryRef entry, void* userInfo) {
  if (checkedCast<CFDictionaryRef>(entry, CFDictionaryGetTypeID()) == nullptr) {
    return true;
  }
  const CFStringRef sought = load(inUUIDstr);
  const Entry values(entry);
  if (sought == nullptr || !values.isComplete()) {
    return true;
  }
  const auto device = OwnedRef<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, values.device_id));
  if (!device) {
    return true;
  }
  const bool is_sought = CFEqual(sought, device.get());
  const bool is_display = CFEqual(values.device_class, kColorSyncDisplayDeviceClass);
  const bool is_default = CFEqual(values.is_default, kCFBooleanTrue);
  const bool is_current = CFEqual(values.is_current, kCFBooleanTrue);
  if (is_display) {
    appendRecord(device.get(), values.description, values.url);
  }
  // Deliberately strict: a default profile that is not current, or a current one that is not default, never matches.
  if (!is_sought || !is_display || !is_default || !is_current) {
    return true;
  }
  // The query whose display this is may have given up while its entry was looked at; the variables belong to the next
  // one. Between this look and the two stores a next query may still begin: that it would read what is stored here, of
  // the display before, is accepted.
  if (load(inUUIDstr) != sought) {
    return true;
  }
  // Both references are kept for the life of the process: results are borrowed from the static variables.
  store(profile_path, kept(static_cast<CFURLRef>(CFRetain(values.url))));
  store(device_name, kept(static_cast<CFStringRef>(CFRetain(values.description))));
  fulfil(static_cast<std::promise<bool>*>(userInfo));
  return false;
}

CFURLRef device_iterator::profileForCGDirectDisplayID(CGDirectDisplayID displayID) {
  // The UUID is deliberately not released.
  if (!seek(kept(CGDisplayCreateUUIDFromDisplayID(displayID)))) {
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

}  // namespace DisplayServices
