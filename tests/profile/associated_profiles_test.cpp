#include <string>
#include <tuple>

#include "profile/profile_fixture.h"

namespace {

using ProfileServices::GetAssociatedProfilesCount;
using ProfileServices::GetInstalledProfilesCount;
using ProfileServices::ListAllInstalledProfiles;
using ProfileServices::ListProfilesForDisplay;
using support::associated;
using support::installed;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class DisplayList : public support::ProfileServicesTest {};

TEST_F(DisplayList, HoldsEveryProfileOfTheDisplayWithItsFlags) {
  setInstalled({installed("/a", "A"), installed("/b", "B"), installed("/c", "C"), installed("/d", "D")});
  setAssociated({associated(1, "/d", true, true), associated(1, "/b", false, true), associated(1, "/c", true, false),
                 associated(1, "/a", false, false)});
  EXPECT_THAT(ListProfilesForDisplay(1),
              ElementsAre(Pair("/a", Flags("A", false, false)), Pair("/b", Flags("B", false, true)),
                          Pair("/c", Flags("C", true, false)), Pair("/d", Flags("D", true, true))));
}

TEST_F(DisplayList, HoldsNoOtherDisplaysProfiles) {
  setInstalled({installed("/a", "A"), installed("/b", "B")});
  setAssociated({associated(1, "/a"), associated(2, "/b")});
  EXPECT_THAT(ListProfilesForDisplay(1), ElementsAre(Pair("/a", Flags("A", false, false))));
  EXPECT_THAT(ListProfilesForDisplay(2), ElementsAre(Pair("/b", Flags("B", false, false))));
}

TEST_F(DisplayList, SkipsDevicesOfAnotherClass) {
  auto printer = associated(1, "/p");
  printer.device_class = "prtr";
  setAssociated({printer, associated(1, "/a")});
  EXPECT_THAT(ListProfilesForDisplay(1), ElementsAre(Pair("/a", Flags("", false, false))));
}

TEST_F(DisplayList, KeepsTheFirstOfTwoReportsOfAPath) {
  setAssociated({associated(1, "/a", true, false), associated(1, "/a", false, true)});
  EXPECT_THAT(ListProfilesForDisplay(1), ElementsAre(Pair("/a", Flags("", true, false))));
}

TEST_F(DisplayList, IsEmptyForADisplayWithoutProfiles) {
  setInstalled({installed("/a", "A")});
  setAssociated({associated(2, "/a")});
  EXPECT_THAT(ListProfilesForDisplay(1), IsEmpty());
}

TEST_F(DisplayList, SkipsIncompleteEntries) {
  auto no_class = associated(1, "/a");
  no_class.device_class.reset();
  auto no_device = associated(1, "/b");
  no_device.device_id.reset();
  setAssociated({no_class, no_device, associated(1, std::nullopt), associated(1, "/c", std::nullopt, std::nullopt)});
  EXPECT_THAT(ListProfilesForDisplay(1), ElementsAre(Pair("/c", Flags("", false, false))));
}

// --- names come from the installed profiles

TEST_F(DisplayList, FillsTheInstalledProfilesWhenNoneAreKnown) {
  setInstalled({installed("/a", "  A")});
  setAssociated({associated(1, "/a")});
  EXPECT_THAT(ListProfilesForDisplay(1), ElementsAre(Pair("/a", Flags("A", false, false))));
  EXPECT_EQ(GetInstalledProfilesCount(), 1U);
}

TEST_F(DisplayList, DoesNotFillTheInstalledProfilesAgain) {
  setInstalled({installed("/a", "A")});
  ListAllInstalledProfiles();
  setInstalled({installed("/a", "Changed"), installed("/new", "New")});
  setAssociated({associated(1, "/a"), associated(1, "/new")});
  EXPECT_THAT(ListProfilesForDisplay(1),
              ElementsAre(Pair("/a", Flags("A", false, false)), Pair("/new", Flags("", false, false))));
}

TEST_F(DisplayList, AddsANamelessInstalledProfileForEachUnknownPath) {
  setInstalled({installed("/a", "A")});
  setAssociated({associated(1, "/a"), associated(1, "/unknown"), associated(2, "/other")});
  ListProfilesForDisplay(1);
  EXPECT_THAT(Iterator::installed_profiles, ElementsAre(Pair("/a", "A"), Pair("/unknown", "")));
  EXPECT_EQ(GetInstalledProfilesCount(), 2U);
  ListProfilesForDisplay(2);
  EXPECT_EQ(GetInstalledProfilesCount(), 3U);
  ListAllInstalledProfiles();
  EXPECT_EQ(GetInstalledProfilesCount(), 1U);
}

TEST_F(DisplayList, DoesNotFillTheInstalledProfilesAfterUnknownPaths) {
  setAssociated({associated(1, "/a")});
  ListProfilesForDisplay(1);
  setInstalled({installed("/a", "A")});
  EXPECT_THAT(ListProfilesForDisplay(1), ElementsAre(Pair("/a", Flags("", false, false))));
}

// --- a display without a UUID

TEST_F(DisplayList, IsUnchangedWithoutUuid) {
  setAssociated({associated(1, "/a", true, true)});
  const auto before = ListProfilesForDisplay(1);
  setAssociated({});
  EXPECT_EQ(ListProfilesForDisplay(3), before);
  EXPECT_EQ(ListProfilesForDisplay(99), before);
  EXPECT_EQ(ListProfilesForDisplay(0), before);
  EXPECT_THAT(ListProfilesForDisplay(2), IsEmpty());
}

TEST_F(DisplayList, MakesNoWalkWithoutUuid) {
  const auto walks = platform::calls::count(platform::calls::Call::ColorSyncIterateDeviceProfiles);
  ListProfilesForDisplay(3);
  EXPECT_EQ(platform::calls::count(platform::calls::Call::ColorSyncIterateDeviceProfiles), walks);
}

TEST_F(DisplayList, FillsTheInstalledProfilesWithoutUuid) {
  setInstalled({installed("/a", "A")});
  ListProfilesForDisplay(3);
  EXPECT_EQ(ProfileServices::GetInstalledProfilesCount(), 1U);
}

TEST_F(DisplayList, IsUnchangedWithoutUuidText) {
  setAssociated({associated(1, "/a", true, true)});
  const auto before = ListProfilesForDisplay(1);
  support::faultOnce(platform::calls::Call::CFUUIDCreateString, 1, {.fail = true});
  EXPECT_EQ(ListProfilesForDisplay(2), before);
}

// --- the count

TEST_F(DisplayList, IsFilledByACountOnlyWhenEmpty) {
  setAssociated({associated(1, "/a"), associated(1, "/b"), associated(2, "/c")});
  EXPECT_EQ(GetAssociatedProfilesCount(2), 1U);
  ListProfilesForDisplay(1);
  EXPECT_EQ(GetAssociatedProfilesCount(2), 2U);
  EXPECT_EQ(GetAssociatedProfilesCount(1), 2U);
  setAssociated({});
  EXPECT_EQ(GetAssociatedProfilesCount(1), 2U);
}

TEST_F(DisplayList, IsFilledByEachCountWithoutProfiles) {
  EXPECT_EQ(GetAssociatedProfilesCount(1), 0U);
  setAssociated({associated(1, "/a")});
  EXPECT_EQ(GetAssociatedProfilesCount(1), 1U);
}

// --- the UUID text

TEST_F(DisplayList, KeepsTheUuidOfTheLastDisplay) {
  ListProfilesForDisplay(1);
  const CFUUIDRef first = CGDisplayCreateUUIDFromDisplayID(1);
  const CFStringRef text = CFUUIDCreateString(kCFAllocatorDefault, first);
  EXPECT_TRUE(CFEqual(Iterator::inUUIDstr, text));
  ListProfilesForDisplay(2);
  EXPECT_FALSE(CFEqual(Iterator::inUUIDstr, text));
  ListProfilesForDisplay(1);
  ListProfilesForDisplay(3);
  EXPECT_TRUE(CFEqual(Iterator::inUUIDstr, text));
  CFRelease(text);
  CFRelease(first);
}

TEST_F(DisplayList, KeepsTheTextsOfEarlierDisplays) {
  ListProfilesForDisplay(1);
  const CFStringRef first = Iterator::inUUIDstr;
  const CFIndex before = CFGetRetainCount(first);
  CFRetain(first);
  ListProfilesForDisplay(2);
  EXPECT_NE(Iterator::inUUIDstr, first);
  EXPECT_EQ(CFGetRetainCount(first), before + 1);
  CFRelease(first);
}

TEST_F(DisplayList, CallbackContinuesForAnyEntry) {
  EXPECT_TRUE(Iterator::deviceListIterator(nullptr, nullptr));
  const CFDictionaryRef empty = CFDictionaryCreate(nullptr, nullptr, nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                   &kCFTypeDictionaryValueCallBacks);
  EXPECT_TRUE(Iterator::deviceListIterator(empty, nullptr));
  CFRelease(empty);
}

TEST_F(DisplayList, CallbackSkipsValuesOfAnotherType) {
  ListProfilesForDisplay(1);
  const CFUUIDRef uuid = CGDisplayCreateUUIDFromDisplayID(1);
  const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a.icc"), kCFURLPOSIXPathStyle, false);
  const CFStringRef keys[] = {kColorSyncDeviceClass, kColorSyncDeviceID, kColorSyncDeviceProfileURL,
                              kColorSyncDeviceProfileIsDefault, kColorSyncDeviceProfileIsCurrent};
  const CFTypeRef sound[] = {kColorSyncDisplayDeviceClass, uuid, url, kCFBooleanTrue, kCFBooleanTrue};
  for (int wrong = -1; wrong < 5; ++wrong) {
    Iterator::clearAssociatedArray();
    const CFMutableDictionaryRef info =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    for (int i = 0; i < 5; ++i) {
      CFDictionarySetValue(info, keys[i], i == wrong ? static_cast<CFTypeRef>(CFSTR("wrong")) : sound[i]);
    }
    EXPECT_TRUE(Iterator::deviceListIterator(info, nullptr));
    if (wrong >= 0 && wrong < 3) {
      EXPECT_THAT(Iterator::associated_profiles, IsEmpty()) << wrong;
    } else {
      EXPECT_THAT(Iterator::associated_profiles, ElementsAre(Pair("/a.icc", Flags("", wrong != 3, wrong != 4))));
    }
    CFRelease(info);
  }
  CFRelease(url);
  CFRelease(uuid);
}

}  // namespace
