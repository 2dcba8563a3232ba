// The cached names of displays.
#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::KnownDisplayForID;

// The cache is the process's: each test uses UUIDs of its own.
class KnownDisplay : public DisplayTest {
 protected:
  /// The only display: number `number` and a UUID of this number.
  void haveDisplay(std::uint32_t number) {
    edit([=](Script& script) {
      script.arrangement.displays = {display(number)};
      script.arrangement.services = {service(number, "Name " + std::to_string(number))};
    });
  }
};

TEST_F(KnownDisplay, IsSearchedOnce) {
  haveDisplay(11);
  const auto before = count(Call::IOServiceGetMatchingServices);
  const CFStringRef first = KnownDisplayForID(11);
  const CFStringRef second = KnownDisplayForID(11);
  EXPECT_EQ(text(first), "Name 11");
  EXPECT_EQ(first, second);
  EXPECT_EQ(count(Call::IOServiceGetMatchingServices), before + 1);
}

TEST_F(KnownDisplay, KeepsItsNameAfterChanges) {
  haveDisplay(12);
  EXPECT_EQ(text(KnownDisplayForID(12)), "Name 12");
  edit([](Script& script) { script.arrangement.services = {service(12, "Renamed")}; });
  DisplayServices::DisplaysChanged();
  EXPECT_EQ(text(KnownDisplayForID(12)), "Name 12");
}

TEST_F(KnownDisplay, StaysUnknown) {
  haveDisplay(13);
  edit([](Script& script) { script.arrangement.services.clear(); });
  EXPECT_EQ(text(KnownDisplayForID(13)), "UNKNOWN");
  haveDisplay(13);
  EXPECT_EQ(text(KnownDisplayForID(13)), "UNKNOWN");
}

TEST_F(KnownDisplay, IsNotCachedWithoutUuid) {
  haveDisplay(14);
  edit([](Script& script) { script.arrangement.displays[0].uuid.reset(); });
  EXPECT_EQ(text(KnownDisplayForID(14)), "UNKNOWN");
  haveDisplay(14);
  EXPECT_EQ(text(KnownDisplayForID(14)), "Name 14");
}

TEST_F(KnownDisplay, IsUnknownForDisplay0AndDisconnectedDisplays) {
  EXPECT_EQ(text(KnownDisplayForID(0)), "UNKNOWN");
  EXPECT_EQ(text(KnownDisplayForID(99)), "UNKNOWN");
  EXPECT_EQ(text(DisplayServices::__knownDisplayForUUID(nullptr)), "UNKNOWN");
}

TEST_F(KnownDisplay, IsKeyedByUuidNotByNumber) {
  haveDisplay(15);
  EXPECT_EQ(text(KnownDisplayForID(15)), "Name 15");
  edit([](Script& script) {
    script.arrangement.displays[0].number = 16;
    script.arrangement.services = {service(15, "Renamed")};
  });
  EXPECT_EQ(text(KnownDisplayForID(16)), "Name 15");
}

TEST_F(KnownDisplay, IsNotCachedWithoutUuidText) {
  haveDisplay(17);
  fail(Call::CFUUIDCreateString);
  EXPECT_EQ(text(KnownDisplayForID(17)), "UNKNOWN");
  platform::calls::removeAllHooks();
  EXPECT_EQ(text(KnownDisplayForID(17)), "Name 17");
}

TEST_F(KnownDisplay, DoesNotConsumeTheUuid) {
  haveDisplay(18);
  const auto uuid = makeUuid(18);
  const CFIndex before = CFGetRetainCount(uuid.get());
  EXPECT_EQ(text(DisplayServices::__knownDisplayForUUID(uuid.get())), "Name 18");
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before);
}

TEST_F(KnownDisplay, LeaksAReferenceToTheUuidPerCall) {
  haveDisplay(19);
  const auto uuid = makeUuid(19);
  const CFIndex before = CFGetRetainCount(uuid.get());
  KnownDisplayForID(19);
  KnownDisplayForID(19);
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before + 2);
}

TEST_F(KnownDisplay, QueriesColorSyncOnce) {
  haveDisplay(20);
  edit([](Script& script) {
    script.arrangement.services = {service(20, "")};
    script.device_profiles.clear();
  });
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(text(KnownDisplayForID(20)), "UNKNOWN");
  EXPECT_EQ(text(KnownDisplayForID(20)), "UNKNOWN");
  EXPECT_THAT(limits(), testing::ElementsAre(std::chrono::seconds(10)));
}

TEST_F(KnownDisplay, IsFoundWithoutACache) {
  haveDisplay(21);
  fail(Call::CFDictionaryCreateMutable);
  EXPECT_EQ(text(KnownDisplayForID(21)), "Name 21");
  platform::calls::removeAllHooks();
  EXPECT_EQ(text(KnownDisplayForID(21)), "Name 21");
}

}  // namespace
