// What each method keeps for the life of the process, and that it keeps nothing else.
//
// The budget is a table: which objects one call keeps. What an object costs is not guessed but measured, by having the
// frameworks make as many of the same kind and keeping them. The account is the C library's own.
#include <gmock/gmock.h>
#include <malloc.h>

#include <ColorSync/ColorSync.h>
#include <CoreGraphics/CoreGraphics.h>
#include <IOKit/graphics/IOGraphicsLib.h>
#include <dispatch/dispatch.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "devhost/entries/host.h"
#include "frameworks/CoreFoundation/uuids.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "leak_budget/allocations.h"
#include "support/fresh_plugin.h"
#include "support/icc_maker.h"
#include "support/scripted.h"
#include "support/temporary_folder.h"

namespace {

using devhost::Values;
using platform::desktop::Script;

constexpr int kCalls = 10'000;

/// What is in use: blocks, counted exactly, and bytes, as the C library counts them in all threads' arenas.
struct Account {
  double blocks = 0;
  double bytes = 0;
  friend Account operator+(Account a, Account b) { return {a.blocks + b.blocks, a.bytes + b.bytes}; }
};

/// What tables that are made once may come to in the course of all calls: a block in a hundred calls, and less than 2
/// bytes a call, where the smallest object takes 32.
constexpr Account kConstant = {100, 16'384};
/// The C library hands out a block that is one step too large, where what would be left is too small to be a block.
constexpr double kRounding = 16;

Account inUse() {
  const struct mallinfo2 info = mallinfo2();
  return {static_cast<double>(leak_budget::livingBlocks()), static_cast<double>(info.uordblks + info.hblkhd)};
}

std::size_t threads() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

/// The queries' threads end a while after the queries; how many there are is chance, and what each of them has in use
/// is not kept. The test itself has one thread.
void waitForQueries() {
  while (threads() > 1) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

/// What the process has gained per call.
Account gainOf(const std::function<void()>& call) {
  constexpr int kWarmUp = 200;
  for (int i = 0; i < kWarmUp; ++i) {
    call();
  }
  waitForQueries();
  const Account before = inUse();
  for (int i = 0; i < kCalls; ++i) {
    call();
  }
  waitForQueries();
  const Account after = inUse();
  return {(after.blocks - before.blocks) / kCalls, (after.bytes - before.bytes) / kCalls};
}

/// A UUID that was never there before.
platform::desktop::Uuid newUuid() {
  static std::uint32_t number = 0;
  ++number;
  platform::desktop::Uuid bytes = {0xAB};
  std::memcpy(&bytes[4], &number, sizeof number);
  return bytes;
}

std::string profile() {
  support::IccMaker maker;
  maker.description("Profile");
  for (const auto& [signature, x, y, z] : {std::tuple("wtpt", 0.9642, 1.0, 0.8249),
                                           {"rXYZ", 0.7977, 0.2880, 0.0},
                                           {"gXYZ", 0.1352, 0.7119, 0.0},
                                           {"bXYZ", 0.0313, 0.0001, 0.8249}}) {
    maker.tag(signature, support::xyzElement(x, y, z));
  }
  maker.tag("QV02", "text" + std::string(4, '\0') + std::string(3000, 'x'));
  return maker.bytes();
}

/// Three displays and three profiles, one of them a real file.
Script desktop(const std::string& path) {
  Script script;
  for (const std::uint32_t number : {1U, 2U, 3U}) {
    auto display = support::display(number, {1000.0 * number, 0, 1000, 800});
    display.vendor = 1;
    display.model = number;
    script.arrangement.displays.push_back(display);
    script.arrangement.screens.push_back(support::screen(display.bounds, 2));
    script.arrangement.services.push_back({true, 1, number, 0, {{{"en", "Monitor " + std::to_string(number)}}}});
    for (const bool is_used : {true, false}) {
      script.device_profiles.push_back({.device_class = platform::desktop::kDisplayDeviceClass,
                                        .device_id = *display.uuid,
                                        .description = "Device " + std::to_string(number),
                                        .is_default = is_used,
                                        .is_current = is_used,
                                        .profile_path = is_used ? path : "/other.icc"});
    }
  }
  script.arrangement.main_screen = 0;
  for (const std::string& installed : {path, std::string("/other.icc"), std::string("/third.icc")}) {
    script.installed_profiles.push_back({"mntr", "Name of " + installed, installed});
  }
  return script;
}

class LeakBudget : public testing::Test {
 protected:
  LeakBudget() : path(folder.write("profile.icc", profile())), session(desktop(path)), plugin(load()) {
    listener = host.makeObject("Listener");
    host.addMethod(*listener, "DisplayProfileFound( name as String, path as String )",
                   [](devhost::Object&, devhost::Values&) { return devhost::Value(); });
    plugin.call("SetObject", {listener});
  }

  devhost::Plugin load() { return support::loadFreshPlugin(host); }

  /// The host's own notes are not the plugin's.
  Account gainOfMethod(const char* name, const Values& arguments) {
    return gainOf([&] {
      plugin.call(name, arguments);
      host.clearRecords();
    });
  }

  // --- what one kept object costs, made by the frameworks themselves

  static CFUUIDRef uuid() {
    static const CFUUIDRef made = CGDisplayCreateUUIDFromDisplayID(1);
    return made;
  }
  static Account uuidText() {
    return gainOf([] { CFUUIDCreateString(kCFAllocatorDefault, uuid()); });
  }
  static Account queue() {
    return gainOf([] { dispatch_queue_create("SERIAL_QUEUE", nullptr); });
  }
  /// The URL and the description of display 1's current entry.
  static Account urlAndDescription() {
    return gainOf([] {
      ColorSyncIterateDeviceProfiles(
          [](CFDictionaryRef entry, void*) {
            CFRetain(CFDictionaryGetValue(entry, kColorSyncDeviceProfileURL));
            CFRetain(CFDictionaryGetValue(entry, kColorSyncDeviceDescription));
            return false;
          },
          nullptr);
    });
  }
  /// What IOKit knows of the first display.
  static Account information() {
    io_iterator_t services = 0;
    IOServiceGetMatchingServices(kIOMasterPortDefault, IOServiceMatching("IODisplayConnect"), &services);
    const io_service_t service = IOIteratorNext(services);
    IOObjectRelease(services);
    return gainOf([=] { IODisplayCreateInfoDictionary(service, kIODisplayOnlyPreferredName); });
  }
  static Account displayList(std::size_t displays) {
    return gainOf([=] { keep(std::calloc(displays, sizeof(CGDirectDisplayID))); });
  }
  Account openedProfileAndSpace() {
    const platform::ScopedPool pool;
    const CFStringRef text = CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(path.data()),
                                                     static_cast<CFIndex>(path.size()), kCFStringEncodingUTF8, false);
    const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, false);
    const Account gain = gainOf([=] {
      const platform::ScopedPool inner;
      CGColorSpaceCreateWithPlatformColorSpace(ColorSyncProfileCreateWithURL(url, nullptr));
    });
    CFRelease(url);
    CFRelease(text);
    return gain;
  }

  /// Says the figures, and compares them.
  static void expectGain(const std::string& what, Account gain, Account predicted) {
    std::cout << what << ": " << gain.blocks << " blocks, " << gain.bytes << " bytes a call; predicted "
              << predicted.blocks << " blocks, " << predicted.bytes << " bytes" << std::endl;
    EXPECT_NEAR(gain.blocks, predicted.blocks, kConstant.blocks / kCalls) << what;
    EXPECT_NEAR(gain.bytes, predicted.bytes, kConstant.bytes / kCalls + kRounding * predicted.blocks) << what;
  }

  /// Keeps the compiler from leaving out an allocation that nobody uses.
  static void keep(void* memory) { asm volatile("" : : "g"(memory) : "memory"); }

  support::TemporaryFolder folder;
  const std::string path;
  support::ScriptedSession session;
  devhost::Host host;
  devhost::Plugin plugin;
  devhost::Ref<devhost::Object> listener;
};

TEST_F(LeakBudget, OfMethodsThatKeepNothing) {
  const std::vector<std::pair<const char*, Values>> methods = {
      {"SetObject", {listener}},
      {"ListAllInstalledProfiles", {}},
      {"ListDisplayProfiles", {1}},
      {"GetRect", {1}},
      {"GetCGRect", {1}},
      {"GetScale", {1}},
      {"SetProfile", {3, path}},
      {"GetInstalledProfilePathsArray", {}},
      {"GetAssociatedProfilePathsArray", {1}},
      {"ICCTagExists", {path, "desc"}},
      {"QV02Read", {path, "before"}},
      // Displays that are not there, a path that is not there, and the like, keep no more.
      {"GetName", {77}},
      {"GetProfilePath", {77}},
      {"SetProfile", {77, path}},
      {"ListDisplayProfiles", {77}},
      {"ICCTagExists", {"/nowhere.icc", "desc"}},
      {"QV02Read", {"/nowhere.icc", "before"}},
  };
  for (const auto& [name, arguments] : methods) {
    expectGain(name, gainOfMethod(name, arguments), {});
  }
  EXPECT_THAT(host.unreleased(), testing::IsEmpty());
}

TEST_F(LeakBudget, OfGetNameIsTheTextThatARememberedNameIsLookedUpBy) {
  expectGain("GetName", gainOfMethod("GetName", {1}), uuidText());
}

TEST_F(LeakBudget, OfTheFirstGetNameOfADisplayIsTheUuidItsTextTheNameInTheListAndTheInformationItIsIn) {
  // Each call is about a display with a UUID that was never there before.
  const Account gain = gainOf([&] {
    session.desktop->change([](Script& script) { script.arrangement.displays[0].uuid = newUuid(); });
    plugin.call("GetName", {1});
  });
  const Account uuid_object = gainOf([] { platform::makeUuid(newUuid()); });
  CFMutableDictionaryRef names =
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  const Account text_and_entry = gainOf([=] {
    const CFUUIDRef made = platform::makeUuid(newUuid());
    CFDictionarySetValue(names, CFUUIDCreateString(nullptr, made), CFSTR("name"));
    CFRelease(made);
  });
  expectGain("the first GetName", gain, uuid_object + text_and_entry + information());
}

TEST_F(LeakBudget, OfGetProfilePathIsTheTextSoughtTheQueueTheUrlAndTheDescription) {
  expectGain("GetProfilePath", gainOfMethod("GetProfilePath", {1}), uuidText() + queue() + urlAndDescription());
}

TEST_F(LeakBudget, OfGetIndexIsTheListOfDisplays) {
  expectGain("GetIndex", gainOfMethod("GetIndex", {2}), displayList(3));
}

TEST_F(LeakBudget, OfDisplayIDForWindowIsTheBufferForOneDisplay) {
  expectGain("DisplayIDForWindow", gainOfMethod("DisplayIDForWindow", {1500, -10, 10, 20}), displayList(1));
}

TEST_F(LeakBudget, OfAQuestionAboutTheGamutIsThatOfTheProfilesPathAndTheProfileAndItsColourSpace) {
  auto* const is_wide_gamut = reinterpret_cast<bool (*)(std::uint32_t)>(plugin.symbol("_ZN7Display11IsWideGamutEj"));
  ASSERT_NE(is_wide_gamut, nullptr);
  const Account gain = gainOf([=] {
    const platform::ScopedPool pool;
    is_wide_gamut(1);
  });
  expectGain("IsWideGamut", gain, uuidText() + queue() + urlAndDescription() + openedProfileAndSpace());
}

TEST_F(LeakBudget, OfAQuestionWhetherTheDisplaysChangedIsTheListOfDisplays) {
  auto* const changed = reinterpret_cast<bool (*)()>(plugin.symbol("_ZN15DisplayServices15DisplaysChangedEv"));
  ASSERT_NE(changed, nullptr);
  // The references on the UUIDs are kept too; a UUID is one object, however many references it has.
  expectGain("DisplaysChanged", gainOf([=] { changed(); }), displayList(3));
}

}  // namespace
