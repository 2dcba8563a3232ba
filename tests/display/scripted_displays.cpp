#include "display/scripted_displays.h"

#include <future>

#include "display/internal.h"

namespace display_tests {
namespace {

constexpr std::chrono::seconds kPatience{30};

struct Waits {
  std::vector<std::chrono::seconds> limits;
  std::function<void()> meanwhile;
};

Waits& waits() {
  static auto* const kept = new Waits;
  return *kept;
}

/// The wait as it is before any test replaces it.
DisplayServices::internal::WalkWait realWait() {
  static const auto real = DisplayServices::internal::walk_wait;
  return real;
}

std::future_status waitedInNoTime(const std::future<bool>& result, std::chrono::seconds limit) {
  waits().limits.push_back(limit);
  if (waits().meanwhile) {
    waits().meanwhile();
  }
  return result.wait_for(std::chrono::seconds(0));
}

}  // namespace

void Event::happen() {
  const std::lock_guard lock(mutex_);
  happened_ = true;
  changed_.notify_all();
}

void Event::wait() {
  std::unique_lock lock(mutex_);
  if (!changed_.wait_for(lock, kPatience, [&] { return happened_; })) {
    ADD_FAILURE() << "waited in vain";
  }
}

Uuid uuidOf(std::uint32_t number) {
  Uuid uuid{};
  uuid[0] = 0xD5;
  uuid[15] = static_cast<std::uint8_t>(number);
  return uuid;
}

Display display(std::uint32_t number) {
  Display result;
  result.number = number;
  result.bounds = {1000.0 * number - 1000.0, 0, 1000, 800};
  result.uuid = uuidOf(number);
  result.vendor = 1;
  result.model = 2;
  result.serial = number;
  return result;
}

DisplayService service(std::uint32_t number, const std::string& name) {
  DisplayService result;
  result.vendor = 1;
  result.product = 2;
  result.serial = number;
  result.product_names = {{{"en", name}}};
  return result;
}

DeviceProfile entry(std::uint32_t number, const std::string& path, bool is_default, bool is_current) {
  return {platform::desktop::kDisplayDeviceClass,
          uuidOf(number),
          "ColorSync " + std::to_string(number),
          is_default,
          is_current,
          path};
}

OwnedRef<CFStringRef> makeString(const std::string& utf8) {
  return OwnedRef<CFStringRef>::adopt(
      CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                              static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

OwnedRef<CFURLRef> makeUrl(const std::string& path) {
  return OwnedRef<CFURLRef>::adopt(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, makeString(path).get(), kCFURLPOSIXPathStyle, false));
}

OwnedRef<CFUUIDRef> makeUuid(std::uint32_t number) {
  CFUUIDBytes bytes{};
  bytes.byte0 = 0xD5;
  bytes.byte15 = static_cast<UInt8>(number);
  return OwnedRef<CFUUIDRef>::adopt(CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, bytes));
}

std::string text(CFStringRef string) {
  if (string == nullptr) {
    return "(null)";
  }
  std::string buffer(1024, '\0');
  if (!CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(buffer.size()), kCFStringEncodingUTF8)) {
    return "(unreadable)";
  }
  return buffer.c_str();
}

std::string path(CFURLRef url) {
  if (url == nullptr) {
    return "(null)";
  }
  return text(OwnedRef<CFStringRef>::adopt(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle)).get());
}

struct DisplayTest::Walks {
  void count(unsigned Walks::*counter) {
    const std::lock_guard lock(mutex);
    ++(this->*counter);
    changed.notify_all();
  }

  std::mutex mutex;
  std::condition_variable changed;
  unsigned begun = 0;
  unsigned over = 0;
};

DisplayTest::DisplayTest() : walks_(std::make_shared<Walks>()), dispatched_before_(count(Call::dispatch_async)) {
  realWait();
  Script script;
  script.device_walk.before = [walks = walks_] { walks->count(&Walks::begun); };
  script.device_walk.after = [walks = walks_] { walks->count(&Walks::over); };
  for (const std::uint32_t number : {1U, 2U, 3U}) {
    script.arrangement.displays.push_back(display(number));
    script.arrangement.services.push_back(service(number, "Name " + std::to_string(number)));
    script.device_profiles.push_back(entry(number, "/profiles/" + std::to_string(number) + ".icc"));
  }
  desktop_ = std::make_shared<ScriptedDesktop>(script);
  platform::desktop::setCurrent(desktop_);
}

DisplayTest::~DisplayTest() {
  desktop_->releaseWalks();
  if (!dispatch_fails_) {
    waitForWalks(static_cast<unsigned>(count(Call::dispatch_async) - dispatched_before_));
  }
  platform::calls::removeAllHooks();
  waitInRealTime();
  platform::desktop::setCurrent(nullptr);
}

void DisplayTest::waitInNoTime(std::function<void()> meanwhile) {
  waits() = {{}, std::move(meanwhile)};
  DisplayServices::internal::walk_wait = waitedInNoTime;
}

const std::vector<std::chrono::seconds>& DisplayTest::limits() { return waits().limits; }

void DisplayTest::waitInRealTime() { DisplayServices::internal::walk_wait = realWait(); }

void DisplayTest::waitFor(unsigned Walks::*counter, unsigned number) {
  std::unique_lock lock(walks_->mutex);
  if (!walks_->changed.wait_for(lock, kPatience, [&] { return walks_.get()->*counter >= number; })) {
    ADD_FAILURE() << walks_->begun << " walks have begun and " << walks_->over << " are over; waited for " << number;
  }
}

void DisplayTest::waitForBegunWalks(unsigned number) { waitFor(&Walks::begun, number); }
void DisplayTest::waitForWalks(unsigned number) { waitFor(&Walks::over, number); }

void DisplayTest::fail(Call call, std::uint64_t nth) {
  dispatch_fails_ = dispatch_fails_ || call == Call::dispatch_async;
  platform::calls::setHook(call, [nth](std::uint64_t this_one) { return Fault{nth == 0 || nth == this_one}; });
}

}  // namespace display_tests
