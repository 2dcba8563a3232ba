// ColorSync's device calls and the displays' UUIDs, over a scripted desktop.
#include <ColorSync/ColorSync.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "base/owned_ref.h"
#include "frameworks/hooks/calls.h"
#include "support/scripted.h"

namespace {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::DeviceProfile;
using platform::desktop::Script;
using platform::desktop::Uuid;
using support::ScriptedSession;
using testing::IsEmpty;

std::string text(CFStringRef string) {
  char buffer[256] = "";
  return string != nullptr && CFStringGetCString(string, buffer, sizeof buffer, kCFStringEncodingUTF8) ? buffer : "-";
}

DeviceProfile fullEntry() {
  DeviceProfile entry;
  entry.device_class = "mntr";
  entry.device_id = support::uuid(7);
  entry.description = "Bildschirm für Büro";
  entry.is_default = true;
  entry.is_current = false;
  entry.profile_path = "/a folder/b%20ü.icc";
  return entry;
}

using Visit = std::function<bool(CFDictionaryRef)>;

void iterate(Visit visit) {
  ColorSyncIterateDeviceProfiles([](CFDictionaryRef entry, void* data) { return (*static_cast<Visit*>(data))(entry); },
                                 &visit);
}

Script scriptOf(std::vector<DeviceProfile> entries) {
  Script script;
  script.device_profiles = std::move(entries);
  return script;
}

TEST(IterateDeviceProfiles, GivesEachValueUnderItsKey) {
  const ScriptedSession session(scriptOf({fullEntry()}));
  int visits = 0;
  iterate([&](CFDictionaryRef entry) {
    ++visits;
    EXPECT_EQ(CFDictionaryGetCount(entry), 6);
    const auto value = [&](CFStringRef key) { return CFDictionaryGetValue(entry, key); };
    EXPECT_TRUE(CFEqual(value(kColorSyncDeviceClass), kColorSyncDisplayDeviceClass));
    const auto id = static_cast<CFUUIDRef>(value(kColorSyncDeviceID));
    EXPECT_EQ(CFGetTypeID(id), CFUUIDGetTypeID());
    EXPECT_EQ(CFUUIDGetUUIDBytes(id).byte15, 7);
    EXPECT_EQ(text(static_cast<CFStringRef>(value(kColorSyncDeviceDescription))), "Bildschirm für Büro");
    EXPECT_EQ(value(kColorSyncDeviceProfileIsDefault), kCFBooleanTrue);
    EXPECT_EQ(value(kColorSyncDeviceProfileIsCurrent), kCFBooleanFalse);
    const auto path = OwnedRef<CFStringRef>::adopt(
        CFURLCopyFileSystemPath(static_cast<CFURLRef>(value(kColorSyncDeviceProfileURL)), kCFURLPOSIXPathStyle));
    EXPECT_EQ(text(path.get()), "/a folder/b%20ü.icc");
    return true;
  });
  EXPECT_EQ(visits, 1);
}

TEST(IterateDeviceProfiles, OmitsAbsentAndInvalidValues) {
  DeviceProfile partial;
  partial.is_current = true;
  DeviceProfile broken;
  broken.description = "\xC3";
  broken.profile_path = "/\xFF.icc";
  const ScriptedSession session(scriptOf({DeviceProfile{}, partial, broken}));
  std::vector<CFIndex> counts;
  iterate([&](CFDictionaryRef entry) {
    counts.push_back(CFDictionaryGetCount(entry));
    return true;
  });
  EXPECT_THAT(counts, testing::ElementsAre(0, 1, 0));
}

TEST(IterateDeviceProfiles, EndsWhenTheCallbackReturnsFalse) {
  const ScriptedSession session(scriptOf({fullEntry(), fullEntry(), fullEntry()}));
  int visits = 0;
  iterate([&](CFDictionaryRef) { return ++visits < 2; });
  EXPECT_EQ(visits, 2);
}

TEST(IterateDeviceProfiles, CallsBackOnTheCallingThread) {
  const ScriptedSession session(scriptOf({fullEntry()}));
  std::thread::id on;
  iterate([&](CFDictionaryRef) {
    on = std::this_thread::get_id();
    return true;
  });
  EXPECT_EQ(on, std::this_thread::get_id());
}

TEST(IterateDeviceProfiles, ReleasesAnEntryAfterItsCallback) {
  const ScriptedSession session(scriptOf({fullEntry()}));
  OwnedRef<CFDictionaryRef> kept_entry;
  OwnedRef<CFURLRef> kept_url;
  iterate([&](CFDictionaryRef entry) {
    kept_entry = OwnedRef<CFDictionaryRef>::adopt(static_cast<CFDictionaryRef>(CFRetain(entry)));
    kept_url = OwnedRef<CFURLRef>::adopt(
        static_cast<CFURLRef>(CFRetain(CFDictionaryGetValue(entry, kColorSyncDeviceProfileURL))));
    return true;
  });
  EXPECT_EQ(CFGetRetainCount(kept_entry.get()), 1);
  kept_entry = {};
  EXPECT_EQ(CFGetRetainCount(kept_url.get()), 1);
}

TEST(IterateDeviceProfiles, VisitsNothingOnFailureOrWithoutACallback) {
  const ScriptedSession session(scriptOf({fullEntry()}));
  ColorSyncIterateDeviceProfiles(nullptr, nullptr);
  platform::calls::setHook(Call::ColorSyncIterateDeviceProfiles, [](std::uint64_t) { return Fault{.fail = true}; });
  int visits = 0;
  iterate([&](CFDictionaryRef) { return ++visits > 0; });
  EXPECT_EQ(visits, 0);
}

OwnedRef<CFUUIDRef> uuidRef(std::uint8_t last) {
  CFUUIDBytes bytes{};
  bytes.byte15 = last;
  return OwnedRef<CFUUIDRef>::adopt(CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, bytes));
}

OwnedRef<CFURLRef> fileUrl(const std::string& path) {
  const auto bytes = reinterpret_cast<const UInt8*>(path.data());
  const auto string = OwnedRef<CFStringRef>::adopt(CFStringCreateWithBytes(
      kCFAllocatorDefault, bytes, static_cast<CFIndex>(path.size()), kCFStringEncodingUTF8, false));
  return OwnedRef<CFURLRef>::adopt(
      CFURLCreateWithFileSystemPath(kCFAllocatorDefault, string.get(), kCFURLPOSIXPathStyle, false));
}

OwnedRef<CFDictionaryRef> dictionary(const void* key, const void* value) {
  return OwnedRef<CFDictionaryRef>::adopt(CFDictionaryCreate(
      kCFAllocatorDefault, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

class SetCustomProfiles : public testing::Test {
 protected:
  std::string assignedPath() {
    std::string path;
    session_.desktop->visitDeviceProfiles([&](const DeviceProfile& entry) {
      path = entry.profile_path.value_or("-");
      return true;
    });
    return path;
  }

  ScriptedSession session_{scriptOf({fullEntry()})};
  const OwnedRef<CFUUIDRef> device_ = uuidRef(7);
  const OwnedRef<CFURLRef> url_ = fileUrl("/new profile.icc");
  const OwnedRef<CFDictionaryRef> profiles_ = dictionary(kColorSyncDeviceDefaultProfileID, url_.get());
};

TEST_F(SetCustomProfiles, AssignsTheFileOfTheDefaultProfile) {
  EXPECT_TRUE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, device_.get(), profiles_.get()));
  EXPECT_EQ(assignedPath(), "/new profile.icc");
}

TEST_F(SetCustomProfiles, ReturnsFalseForAnotherClassDeviceOrKey) {
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(CFSTR("prtr"), device_.get(), profiles_.get()));
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, uuidRef(8).get(), profiles_.get()));
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, device_.get(),
                                                dictionary(CFSTR("another"), url_.get()).get()));
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, device_.get(),
                                                dictionary(kColorSyncDeviceDefaultProfileID, CFSTR("/a.icc")).get()));
  EXPECT_EQ(assignedPath(), *fullEntry().profile_path);
}

TEST_F(SetCustomProfiles, ReturnsFalseForNull) {
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(nullptr, device_.get(), profiles_.get()));
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, nullptr, profiles_.get()));
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, device_.get(), nullptr));
  EXPECT_EQ(assignedPath(), *fullEntry().profile_path);
}

TEST_F(SetCustomProfiles, ReturnsFalseOnFailure) {
  platform::calls::setHook(Call::ColorSyncDeviceSetCustomProfiles, [](std::uint64_t) { return Fault{.fail = true}; });
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, device_.get(), profiles_.get()));
  platform::calls::removeAllHooks();
  session_.desktop->change([](Script& script) { script.accepts_profiles = false; });
  EXPECT_FALSE(ColorSyncDeviceSetCustomProfiles(kColorSyncDisplayDeviceClass, device_.get(), profiles_.get()));
}

Script scriptOfDisplays() {
  Script script;
  script.arrangement.displays = {support::display(3, {}), support::display(9, {}), support::display(4, {})};
  script.arrangement.displays[2].uuid.reset();
  return script;
}

TEST(DisplayUuid, IsTheArrangementsAndConvertsBack) {
  const ScriptedSession session(scriptOfDisplays());
  const auto uuid = OwnedRef<CFUUIDRef>::adopt(CGDisplayCreateUUIDFromDisplayID(9));
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid.get(), uuidRef(9).get());
  EXPECT_EQ(CGDisplayGetDisplayIDFromUUID(uuid.get()), 9U);
}

TEST(DisplayUuid, IsNullForAnUnknownDisplay) {
  const ScriptedSession session(scriptOfDisplays());
  EXPECT_EQ(CGDisplayCreateUUIDFromDisplayID(0), nullptr);
  EXPECT_EQ(CGDisplayCreateUUIDFromDisplayID(5), nullptr);
  EXPECT_EQ(CGDisplayCreateUUIDFromDisplayID(4), nullptr);
  EXPECT_EQ(CGDisplayGetDisplayIDFromUUID(uuidRef(5).get()), 0U);
  EXPECT_EQ(CGDisplayGetDisplayIDFromUUID(nullptr), 0U);
}

TEST(DisplayUuid, IsNullOnFailure) {
  const ScriptedSession session(scriptOfDisplays());
  const auto uuid = uuidRef(9);
  for (const Call call : {Call::CGDisplayCreateUUIDFromDisplayID, Call::CGDisplayGetDisplayIDFromUUID}) {
    platform::calls::setHook(call, [](std::uint64_t) { return Fault{.fail = true}; });
  }
  EXPECT_EQ(CGDisplayCreateUUIDFromDisplayID(9), nullptr);
  EXPECT_EQ(CGDisplayGetDisplayIDFromUUID(uuid.get()), 0U);
}

}  // namespace
