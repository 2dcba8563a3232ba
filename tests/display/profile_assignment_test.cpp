// Assigning a profile to a display.
#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::SetProfileForDisplay;
using DisplayServices::SetProfileForDisplay64;

using ProfileAssignment = DisplayTest;

std::string queriedPath(CGDirectDisplayID number) {
  return path(OwnedRef<CFURLRef>::adopt(DisplayServices::ProfilePathForDisplay(number)).get());
}

/// A reference of the caller's own, to be consumed.
CFUUIDRef consumable(std::uint32_t number) { return makeUuid(number).release(); }

TEST_F(ProfileAssignment, ChangesTheProfile) {
  const auto url = makeUrl("/folder with spaces/Profil é.icc");
  EXPECT_TRUE(SetProfileForDisplay(url.get(), 2));
  EXPECT_EQ(queriedPath(2), "/folder with spaces/Profil é.icc");
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
}

TEST_F(ProfileAssignment, ByUuidChangesTheProfile) {
  const auto url = makeUrl("/new.icc");
  EXPECT_TRUE(SetProfileForDisplay64(url.get(), consumable(3)));
  EXPECT_EQ(queriedPath(3), "/new.icc");
}

TEST_F(ProfileAssignment, SetsTheDefaultProfileOnly) {
  const platform::calls::Edit look = [](const void* given) -> const void* {
    const auto profiles = static_cast<CFDictionaryRef>(given);
    EXPECT_EQ(CFDictionaryGetCount(profiles), 1);
    EXPECT_EQ(path(static_cast<CFURLRef>(CFDictionaryGetValue(profiles, kColorSyncDeviceDefaultProfileID))),
              "/new.icc");
    return CFRetain(given);
  };
  platform::calls::setHook(Call::ColorSyncDeviceSetCustomProfiles, [&](std::uint64_t) { return Fault{.edit = &look}; });
  const auto url = makeUrl("/new.icc");
  EXPECT_TRUE(SetProfileForDisplay(url.get(), 2));
  EXPECT_EQ(queriedPath(2), "/new.icc");
}

TEST_F(ProfileAssignment, ReturnsFalseWhenColorSyncRefuses) {
  edit([](Script& script) { script.accepts_profiles = false; });
  const auto url = makeUrl("/new.icc");
  EXPECT_FALSE(SetProfileForDisplay(url.get(), 1));
  EXPECT_EQ(queriedPath(1), "/profiles/1.icc");
}

TEST_F(ProfileAssignment, KeepsReferenceCounts) {
  const auto url = makeUrl("/new.icc");
  const auto uuid = makeUuid(1);
  const CFIndex url_before = CFGetRetainCount(url.get());
  const CFIndex uuid_before = CFGetRetainCount(uuid.get());
  EXPECT_TRUE(SetProfileForDisplay(url.get(), 1));
  EXPECT_EQ(CFGetRetainCount(url.get()), url_before);
  EXPECT_EQ(CFGetRetainCount(uuid.get()), uuid_before);
}

TEST_F(ProfileAssignment, AlwaysConsumesTheUuid) {
  const auto url = makeUrl("/new.icc");
  const auto uuid = makeUuid(1);
  const CFIndex before = CFGetRetainCount(uuid.get());
  EXPECT_TRUE(SetProfileForDisplay64(url.get(), consumable(1)));
  EXPECT_FALSE(SetProfileForDisplay64(nullptr, consumable(1)));
  fail(Call::CFDictionaryCreate);
  EXPECT_FALSE(SetProfileForDisplay64(url.get(), consumable(1)));
  fail(Call::ColorSyncDeviceSetCustomProfiles);
  EXPECT_FALSE(SetProfileForDisplay64(url.get(), consumable(1)));
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before);
}

TEST_F(ProfileAssignment, ReturnsFalseWithoutUrlOrUuid) {
  const auto url = makeUrl("/new.icc");
  const auto before = count(Call::ColorSyncDeviceSetCustomProfiles);
  EXPECT_FALSE(SetProfileForDisplay(nullptr, 1));
  EXPECT_FALSE(SetProfileForDisplay(url.get(), 0));
  EXPECT_FALSE(SetProfileForDisplay(url.get(), 99));
  EXPECT_FALSE(SetProfileForDisplay64(url.get(), nullptr));
  EXPECT_FALSE(SetProfileForDisplay64(nullptr, nullptr));
  EXPECT_EQ(count(Call::ColorSyncDeviceSetCustomProfiles), before);
}

TEST_F(ProfileAssignment, ReturnsFalseForADisplayUnknownToColorSync) {
  edit([](Script& script) { script.device_profiles.clear(); });
  EXPECT_FALSE(SetProfileForDisplay(makeUrl("/new.icc").get(), 1));
}

}  // namespace
