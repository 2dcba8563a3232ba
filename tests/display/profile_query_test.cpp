// Which profile a display uses.
#include <pthread.h>

#include <array>

#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::device_iterator;
using DisplayServices::ProfilePathForDisplay;
using testing::ElementsAre;
using testing::IsEmpty;

using ProfileQuery = DisplayTest;

std::string queriedPath(CGDirectDisplayID number) {
  return path(OwnedRef<CFURLRef>::adopt(ProfilePathForDisplay(number)).get());
}

TEST_F(ProfileQuery, ReturnsTheDefaultAndCurrentProfileAtOnce) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

TEST_F(ProfileQuery, DistinguishesTwinsByUuid) {
  edit([](Script& script) {
    for (Display& display : script.arrangement.displays) {
      display.serial = 0;
    }
    for (DeviceProfile& entry : script.device_profiles) {
      entry.description = "Twin";
    }
  });
  EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
  EXPECT_EQ(queriedPath(3), "/profiles/3.icc");
}

TEST_F(ProfileQuery, SkipsOtherProfilesOfTheDisplay) {
  edit([](Script& script) {
    script.device_profiles = {entry(1, "/neither", false, false), entry(1, "/default", true, false),
                              entry(1, "/current", false, true), entry(1, "/both")};
  });
  EXPECT_EQ(queriedPath(1), "/both");
}

TEST_F(ProfileQuery, ReturnsTheFirstMatch) {
  edit([](Script& script) { script.device_profiles = {entry(1, "/first"), entry(1, "/second")}; });
  EXPECT_EQ(queriedPath(1), "/first");
}

TEST_F(ProfileQuery, NeedsAProfileBothDefaultAndCurrent) {
  edit([](Script& script) { script.device_profiles = {entry(1, "/d", true, false), entry(1, "/c", false, true)}; });
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
}

TEST_F(ProfileQuery, NeverMatchesADeviceOfAnotherClass) {
  edit([](Script& script) { script.device_profiles[0].device_class = "prtr"; });
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
}

TEST_F(ProfileQuery, SkipsIncompleteEntries) {
  edit([](Script& script) {
    std::vector<DeviceProfile> entries(7, entry(1, "/partial"));
    entries[0].device_class.reset();
    entries[1].device_id.reset();
    entries[2].description.reset();
    entries[3].is_default.reset();
    entries[4].is_current.reset();
    entries[5].profile_path.reset();
    entries[6].profile_path = "/whole";
    script.device_profiles = entries;
  });
  EXPECT_EQ(queriedPath(1), "/whole");
}

TEST_F(ProfileQuery, RetainsTheResultOnce) {
  const CFURLRef borrowed = device_iterator::profileForCGDirectDisplayID(1);
  waitForWalks(1);
  const CFURLRef owned = ProfilePathForDisplay(1);
  waitForWalks(2);
  ASSERT_NE(borrowed, nullptr);
  ASSERT_NE(owned, nullptr);
  EXPECT_EQ(device_iterator::profile_path, owned);
  // Each walk has released the URL that it made: what is left are the references of the query.
  EXPECT_EQ(CFGetRetainCount(borrowed), 1);
  EXPECT_EQ(CFGetRetainCount(owned), 2);
  CFRelease(owned);
  EXPECT_EQ(path(owned), "/profiles/1.icc") << "still held by profile_path";
}

TEST_F(ProfileQuery, WalksOnAQueueWithItsLabel) {
  std::string label;
  platform::calls::setHook(Call::ColorSyncIterateDeviceProfiles, [&](std::uint64_t) {
    std::array<char, 16> name{};  // a queue's thread is called after it
    pthread_getname_np(pthread_self(), name.data(), name.size());
    label = name.data();
    return Fault{};
  });
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  EXPECT_EQ(label, "SERIAL_QUEUE");
}

TEST_F(ProfileQuery, ReturnsNullForADisplayUnknownToColorSync) {
  edit([](Script& script) { script.device_profiles.erase(script.device_profiles.begin()); });
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_EQ(device_iterator::profile_path, nullptr);
}

TEST_F(ProfileQuery, LeavesEmptyAsTheDeviceNameWithoutAMatch) {
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  EXPECT_EQ(text(device_iterator::device_name), "ColorSync 1");
  edit([](Script& script) { script.device_profiles.clear(); });
  waitInNoTime([this] { waitForWalks(2); });
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_EQ(text(device_iterator::device_name), "Empty");
}

TEST_F(ProfileQuery, ReturnsNullAtOnceWithoutUuid) {
  edit([](Script& script) { script.arrangement.displays[0].uuid.reset(); });
  const auto walks = count(Call::dispatch_async);
  waitInNoTime();
  EXPECT_EQ(ProfilePathForDisplay(0), nullptr);
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_EQ(ProfilePathForDisplay(99), nullptr);
  EXPECT_THAT(limits(), IsEmpty());
  EXPECT_EQ(count(Call::dispatch_async), walks);
  EXPECT_EQ(text(device_iterator::device_name), "Empty");
}

TEST_F(ProfileQuery, ReturnsNullAtOnceWithoutUuidText) {
  waitInNoTime();
  fail(Call::CFUUIDCreateString);
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_THAT(limits(), IsEmpty());
}

TEST_F(ProfileQuery, ReturnsNullAtOnceWithoutAQueue) {
  waitInNoTime();
  fail(Call::dispatch_queue_create);
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_THAT(limits(), IsEmpty());
}

TEST_F(ProfileQuery, ReturnsNullAtTheLimitWithoutAWalk) {
  waitInNoTime();
  fail(Call::dispatch_async);
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_THAT(limits(), ElementsAre(std::chrono::seconds(2)));
}

TEST_F(ProfileQuery, WalksOnANewQueueEveryTime) {
  const auto queues = count(Call::dispatch_queue_create);
  const auto walks = count(Call::ColorSyncIterateDeviceProfiles);
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  edit([](Script& script) { script.device_profiles[0].profile_path = "/changed.icc"; });
  EXPECT_EQ(queriedPath(1), "/changed.icc");
  EXPECT_EQ(count(Call::dispatch_queue_create), queues + 2);
  EXPECT_EQ(count(Call::ColorSyncIterateDeviceProfiles), walks + 2);
  EXPECT_EQ(device_iterator::devices_info, nullptr);
}

TEST_F(ProfileQuery, EndsItsWalkAtTheFirstMatch) {
  edit([](Script& script) { script.device_walk.repeat = 1000; });
  const auto before = count(Call::CFUUIDCreateString);
  EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
  waitForWalks(1);
  EXPECT_EQ(count(Call::CFUUIDCreateString), before + 3) << "one for the sought display, one per entry visited";
}

TEST_F(ProfileQuery, LeaksTheUuidText) {
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  const CFStringRef first = device_iterator::inUUIDstr;
  EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
  EXPECT_NE(device_iterator::inUUIDstr, first);
  EXPECT_EQ(text(first), "D5000000-0000-0000-0000-000000000001") << "not released";
  EXPECT_EQ(text(device_iterator::inUUIDstr), "D5000000-0000-0000-0000-000000000002");
}

TEST_F(ProfileQuery, LeaksTheUuid) {
  const auto uuid = makeUuid(1);
  const CFIndex before = CFGetRetainCount(uuid.get());
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  waitForWalks(1);
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before + 1);
}

/// With a list of devices, which the plugin itself never makes.
class ListOfDevices : public DisplayTest {
 protected:
  ListOfDevices() { device_iterator::devices_info = &records_; }
  ~ListOfDevices() override { device_iterator::devices_info = nullptr; }

  /// A query for the first query's display finds its record without a walk.
  void expectNoFurtherWalk(const std::function<void()>& query) {
    waitForWalks(1);
    ASSERT_THAT(records_, testing::SizeIs(1));
    EXPECT_EQ(CFDictionaryGetCount(records_[0].get()), 3);
    const auto walks = count(Call::dispatch_async);
    query();
    EXPECT_EQ(count(Call::dispatch_async), walks);
  }

  const std::vector<device_iterator::DeviceRecord>& records() const { return records_; }

 private:
  std::vector<device_iterator::DeviceRecord> records_;
};

TEST_F(ListOfDevices, ServesProfileAndNameQueries) {
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  expectNoFurtherWalk([] {
    EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
    EXPECT_EQ(text(DisplayServices::displayNameUsingColorSync(makeUuid(1).get())), "ColorSync 1");
  });
}

TEST_F(ListOfDevices, SkipsADeviceWithoutARecord) {
  fail(Call::CFDictionaryCreate);
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
  waitForWalks(1);
  EXPECT_THAT(records(), IsEmpty());
}

}  // namespace
