// The callback of a ColorSync walk, called directly with entries of all kinds.
#include <future>

#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::device_iterator;

constexpr const char* kPath = "/profiles/custom.icc";

/// Owns one entry, complete and matching display 1 until a value is replaced or left out.
class MadeEntry {
 public:
  MadeEntry()
      : dictionary_(OwnedRef<CFMutableDictionaryRef>::adopt(CFDictionaryCreateMutable(
            kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks))),
        url_(makeUrl(kPath)),
        description_(makeString("Callback display")) {
    set(kColorSyncDeviceClass, kColorSyncDisplayDeviceClass);
    set(kColorSyncDeviceID, makeUuid(1).get());
    set(kColorSyncDeviceDescription, description_.get());
    set(kColorSyncDeviceProfileIsDefault, kCFBooleanTrue);
    set(kColorSyncDeviceProfileIsCurrent, kCFBooleanTrue);
    set(kColorSyncDeviceProfileURL, url_.get());
  }

  MadeEntry& set(CFStringRef key, CFTypeRef value) {
    CFDictionarySetValue(dictionary_.get(), key, value);
    return *this;
  }
  CFDictionaryRef get() const { return dictionary_.get(); }
  CFURLRef url() const { return url_.get(); }
  CFStringRef description() const { return description_.get(); }

 private:
  OwnedRef<CFMutableDictionaryRef> dictionary_;
  OwnedRef<CFURLRef> url_;
  OwnedRef<CFStringRef> description_;
};

std::vector<CFStringRef> allKeys() {
  return {kColorSyncDeviceClass,
          kColorSyncDeviceID,
          kColorSyncDeviceDescription,
          kColorSyncDeviceProfileIsDefault,
          kColorSyncDeviceProfileIsCurrent,
          kColorSyncDeviceProfileURL};
}

class DeviceListIterator : public DisplayTest {
 protected:
  DeviceListIterator() {
    device_iterator::inUUIDstr = sought_.get();
    device_iterator::profile_path = nullptr;
    device_iterator::device_name = nullptr;
  }
  ~DeviceListIterator() override { device_iterator::inUUIDstr = nullptr; }

  bool goesOn(CFDictionaryRef entry) { return goesOn(entry, &promise_); }
  /// Takes over the references that the callback keeps for ever, so that the leak checker finds no others.
  bool goesOn(CFDictionaryRef entry, std::promise<bool>* promise) {
    const bool goes_on = device_iterator::deviceListIterator(entry, promise);
    if (!goes_on) {
      urls_.push_back(OwnedRef<CFURLRef>::adopt(device_iterator::profile_path));
      names_.push_back(OwnedRef<CFStringRef>::adopt(device_iterator::device_name));
    }
    return goes_on;
  }
  bool fulfilled() { return answer_.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }
  void expectNoMatch(CFDictionaryRef entry) {
    EXPECT_TRUE(goesOn(entry));
    EXPECT_FALSE(fulfilled());
    EXPECT_EQ(device_iterator::profile_path, nullptr);
    EXPECT_EQ(device_iterator::device_name, nullptr);
  }

  static OwnedRef<CFStringRef> uuidText(std::uint32_t number) {
    return OwnedRef<CFStringRef>::adopt(CFUUIDCreateString(kCFAllocatorDefault, makeUuid(number).get()));
  }

  const OwnedRef<CFStringRef> sought_ = uuidText(1);
  std::vector<OwnedRef<CFURLRef>> urls_;
  std::vector<OwnedRef<CFStringRef>> names_;
  std::promise<bool> promise_;
  std::future<bool> answer_ = promise_.get_future();
};

TEST_F(DeviceListIterator, EndsTheWalkAtAMatch) {
  const MadeEntry made;
  EXPECT_FALSE(goesOn(made.get()));
  ASSERT_TRUE(fulfilled());
  EXPECT_TRUE(answer_.get());
  EXPECT_EQ(device_iterator::profile_path, made.url());
  EXPECT_EQ(device_iterator::device_name, made.description());
}

TEST_F(DeviceListIterator, RetainsTheUrlOfAMatch) {
  const MadeEntry made;
  const CFIndex before = CFGetRetainCount(made.url());
  goesOn(made.get());
  EXPECT_EQ(CFGetRetainCount(made.url()), before + 1);
}

TEST_F(DeviceListIterator, RetainsTheNameOfAMatch) {
  const MadeEntry made;
  const CFIndex before = CFGetRetainCount(made.description());
  goesOn(made.get());
  EXPECT_EQ(CFGetRetainCount(made.description()), before + 1);
}

TEST_F(DeviceListIterator, RetainsNothingWithoutAMatch) {
  MadeEntry made;
  made.set(kColorSyncDeviceProfileIsCurrent, kCFBooleanFalse);
  const CFIndex url_before = CFGetRetainCount(made.url());
  const CFIndex name_before = CFGetRetainCount(made.description());
  expectNoMatch(made.get());
  EXPECT_EQ(CFGetRetainCount(made.url()), url_before);
  EXPECT_EQ(CFGetRetainCount(made.description()), name_before);
}

TEST_F(DeviceListIterator, NeedsAllFourConditions) {
  expectNoMatch(MadeEntry().set(kColorSyncDeviceID, makeUuid(2).get()).get());
  expectNoMatch(MadeEntry().set(kColorSyncDeviceClass, makeString("prtr").get()).get());
  expectNoMatch(MadeEntry().set(kColorSyncDeviceProfileIsDefault, kCFBooleanFalse).get());
  expectNoMatch(MadeEntry().set(kColorSyncDeviceProfileIsCurrent, kCFBooleanFalse).get());
}

TEST_F(DeviceListIterator, SkipsAnEntryWithAMissingValue) {
  for (const CFStringRef missing : allKeys()) {
    const auto partial = OwnedRef<CFMutableDictionaryRef>::adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    const MadeEntry whole;
    for (const CFStringRef key : allKeys()) {
      if (key != missing) {
        CFDictionarySetValue(partial.get(), key, CFDictionaryGetValue(whole.get(), key));
      }
    }
    SCOPED_TRACE(text(missing));
    expectNoMatch(partial.get());
  }
}

TEST_F(DeviceListIterator, SkipsAnEntryWithAValueOfAnotherType) {
  const UInt8 byte = 1;
  const auto data = OwnedRef<CFDataRef>::adopt(CFDataCreate(kCFAllocatorDefault, &byte, 1));
  for (const CFStringRef key : allKeys()) {
    SCOPED_TRACE(text(key));
    expectNoMatch(MadeEntry().set(key, data.get()).get());
  }
  const std::int32_t one = 1;
  const auto number = OwnedRef<CFNumberRef>::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &one));
  expectNoMatch(MadeEntry().set(kColorSyncDeviceProfileIsDefault, number.get()).get());
}

TEST_F(DeviceListIterator, SkipsANullEntry) { expectNoMatch(nullptr); }

TEST_F(DeviceListIterator, MatchesNothingWithoutASoughtUuid) {
  device_iterator::inUUIDstr = nullptr;
  expectNoMatch(MadeEntry().get());
}

TEST_F(DeviceListIterator, SkipsADeviceWithoutUuidText) {
  const MadeEntry made;
  fail(Call::CFUUIDCreateString);
  expectNoMatch(made.get());
}

TEST_F(DeviceListIterator, AcceptsAFulfilledPromise) {
  const MadeEntry first;
  const MadeEntry second;
  EXPECT_FALSE(goesOn(first.get()));
  EXPECT_FALSE(goesOn(second.get()));
  EXPECT_EQ(device_iterator::profile_path, second.url());
  EXPECT_TRUE(answer_.get());
}

TEST_F(DeviceListIterator, AcceptsANullPromise) {
  const MadeEntry made;
  EXPECT_FALSE(goesOn(made.get(), nullptr));
  EXPECT_EQ(device_iterator::profile_path, made.url());
}

TEST_F(DeviceListIterator, DropsAMatchForAnEarlierQuery) {
  const MadeEntry made;
  const auto other = uuidText(2);
  platform::calls::setHook(Call::CFEqual, [&other](std::uint64_t nth) {
    if (nth == 4) {
      device_iterator::inUUIDstr = other.get();
    }
    return Fault{};
  });
  expectNoMatch(made.get());
  EXPECT_EQ(device_iterator::inUUIDstr, other.get());
}

TEST_F(DeviceListIterator, DiscardsDeviceRecords) {
  const MadeEntry made;
  const auto before = count(Call::CFDictionaryCreate);
  goesOn(made.get());
  EXPECT_EQ(device_iterator::devices_info, nullptr);
  EXPECT_EQ(count(Call::CFDictionaryCreate), before);
}

}  // namespace
