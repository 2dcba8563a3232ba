// What each method keeps for the life of the process, in objects per call, and that it keeps nothing else.
//
// What an object costs is measured: the frameworks make as many of the same kind, and the test keeps them.
#include <gmock/gmock.h>
#include <malloc.h>

#include <ColorSync/ColorSync.h>
#include <CoreGraphics/CoreGraphics.h>
#include <IOKit/graphics/IOGraphicsLib.h>
#include <dispatch/dispatch.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
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
#include "support/fresh_plugin.h"
#include "support/icc_maker.h"
#include "support/scripted.h"
#include "support/temporary_folder.h"

namespace {

std::atomic<std::int64_t> living_blocks{0};

void* counted(void* block) {
  if (block != nullptr) {
    living_blocks.fetch_add(1, std::memory_order_relaxed);
  }
  return block;
}

}  // namespace

// The C library's allocation functions under their own names, with a count of living blocks.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

#define REPLACEMENT __attribute__((visibility("default")))

REPLACEMENT void* malloc(std::size_t size) noexcept { return counted(__libc_malloc(size)); }
REPLACEMENT void* calloc(std::size_t count, std::size_t size) noexcept { return counted(__libc_calloc(count, size)); }
REPLACEMENT void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return counted(__libc_memalign(alignment, size));
}
REPLACEMENT void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return counted(__libc_memalign(alignment, size));
}

REPLACEMENT int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  *block = counted(__libc_memalign(alignment, size));
  return *block == nullptr ? ENOMEM : 0;
}

REPLACEMENT void free(void* block) noexcept {
  if (block != nullptr) {
    living_blocks.fetch_sub(1, std::memory_order_relaxed);
  }
  __libc_free(block);
}

REPLACEMENT void* realloc(void* block, std::size_t size) noexcept {
  if (block == nullptr) {
    return malloc(size);
  }
  if (size == 0) {
    free(block);
    return nullptr;
  }
  return __libc_realloc(block, size);
}

}  // extern "C"

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

/// The limit for tables that are made once, in all calls: a block in a hundred calls, and less than 2 bytes a call,
/// where the smallest object takes 32.
constexpr Account kConstant = {100, 16'384};
/// The C library gives a block one step too large where the rest would be too small for a block.
constexpr double kRounding = 16;

Account inUse() {
  const struct mallinfo2 info = mallinfo2();
  return {static_cast<double>(living_blocks.load()), static_cast<double>(info.uordblks + info.hblkhd)};
}

std::size_t threads() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

/// Waits until the queries' threads have ended, because what they have in use is not kept. The test has one thread.
void waitForQueries() {
  while (threads() > 1) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

/// The process's gain per call.
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

/// A new UUID each time.
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

  /// Without the host's own records.
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
  /// A value of display 1's current entry.
  static Account entryValue(CFStringRef key) {
    const Account gain = gainOf([=] {
      ColorSyncIterateDeviceProfiles(
          [](CFDictionaryRef entry, void* wanted) {
            CFRetain(CFDictionaryGetValue(entry, static_cast<CFStringRef>(wanted)));
            return false;
          },
          const_cast<__CFString*>(key));
    });
    EXPECT_GT(gain.blocks, kConstant.blocks / kCalls) << "a value without memory of its own cannot be counted";
    return gain;
  }
  static Account urlAndDescription() {
    return entryValue(kColorSyncDeviceProfileURL) + entryValue(kColorSyncDeviceDescription);
  }
  /// IOKit's information about the first display.
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

  /// Prints and compares the figures.
  static void expectGain(const std::string& what, Account gain, Account predicted) {
    std::cout << what << ": " << gain.blocks << " blocks, " << gain.bytes << " bytes a call; predicted "
              << predicted.blocks << " blocks, " << predicted.bytes << " bytes" << std::endl;
    EXPECT_NEAR(gain.blocks, predicted.blocks, kConstant.blocks / kCalls) << what;
    EXPECT_NEAR(gain.bytes, predicted.bytes, kConstant.bytes / kCalls + kRounding * predicted.blocks) << what;
  }

  /// Keeps the compiler from dropping an unused allocation.
  static void keep(void* memory) { asm volatile("" : : "g"(memory) : "memory"); }

  support::TemporaryFolder folder;
  const std::string path;
  support::ScriptedSession session;
  devhost::Host host;
  devhost::Plugin plugin;
  devhost::Ref<devhost::Object> listener;
};

TEST_F(LeakBudget, MethodsThatKeepNothing) {
  const std::vector<std::pair<const char*, Values>> methods = {
      {"SetObject", {listener}},
      {"ListAllInstalledProfiles", {}},
      {"GetRect", {1}},
      {"GetCGRect", {1}},
      {"GetScale", {1}},
      {"SetProfile", {3, path}},
      {"GetInstalledProfilePathsArray", {}},
      {"ICCTagExists", {path, "desc"}},
      {"QV02Read", {path, "before"}},
      // Nor for unknown displays and files.
      {"GetName", {77}},
      {"GetProfilePath", {77}},
      {"SetProfile", {77, path}},
      {"ListDisplayProfiles", {77}},
      {"GetAssociatedProfilePathsArray", {77}},
      {"ICCTagExists", {"/nowhere.icc", "desc"}},
      {"QV02Read", {"/nowhere.icc", "before"}},
  };
  for (const auto& [name, arguments] : methods) {
    expectGain(name, gainOfMethod(name, arguments), {});
  }
  EXPECT_THAT(host.unreleased(), testing::IsEmpty());
}

// The text of the display's UUID.
TEST_F(LeakBudget, ListDisplayProfiles) {
  expectGain("ListDisplayProfiles", gainOfMethod("ListDisplayProfiles", {1}), uuidText());
}
TEST_F(LeakBudget, GetAssociatedProfilePathsArray) {
  expectGain("GetAssociatedProfilePathsArray", gainOfMethod("GetAssociatedProfilePathsArray", {1}), uuidText());
}

// A cached name: the text of the look-up.
TEST_F(LeakBudget, GetName) { expectGain("GetName", gainOfMethod("GetName", {1}), uuidText()); }

// A display's first call: the UUID, its text, the entry in the list of names, and the information dictionary. Each call
// is about a display with a new UUID.
TEST_F(LeakBudget, FirstGetNameOfADisplay) {
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

// The text of the look-up, the queue, the URL and the description.
TEST_F(LeakBudget, GetProfilePath) {
  expectGain("GetProfilePath", gainOfMethod("GetProfilePath", {1}), uuidText() + queue() + urlAndDescription());
}

// The list of displays.
TEST_F(LeakBudget, GetIndex) { expectGain("GetIndex", gainOfMethod("GetIndex", {2}), displayList(3)); }

// The buffer for one display.
TEST_F(LeakBudget, DisplayIDForWindow) {
  expectGain("DisplayIDForWindow", gainOfMethod("DisplayIDForWindow", {1500, -10, 10, 20}), displayList(1));
}

// As GetProfilePath, and the opened profile with its colour space.
TEST_F(LeakBudget, IsWideGamut) {
  auto* const is_wide_gamut = reinterpret_cast<bool (*)(std::uint32_t)>(plugin.symbol("_ZN7Display11IsWideGamutEj"));
  ASSERT_NE(is_wide_gamut, nullptr);
  const Account gain = gainOf([=] {
    const platform::ScopedPool pool;
    is_wide_gamut(1);
  });
  expectGain("IsWideGamut", gain, uuidText() + queue() + urlAndDescription() + openedProfileAndSpace());
}

// The list of displays. References to the UUIDs are kept too: a UUID is one object with any number of references.
TEST_F(LeakBudget, DisplaysChanged) {
  auto* const changed = reinterpret_cast<bool (*)()>(plugin.symbol("_ZN15DisplayServices15DisplaysChangedEv"));
  ASSERT_NE(changed, nullptr);
  expectGain("DisplaysChanged", gainOf([=] { changed(); }), displayList(3));
}

}  // namespace
