// CoreFoundation over the system's Foundation: what holds for every type, besides tests/conformance.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>

#include "conformance/objects.h"
#include "frameworks/Foundation/autorelease_pool.h"
#include "frameworks/hooks/calls.h"
#include "platform/frameworks/foundation_probe.h"

namespace core_foundation_test {
namespace {

using conformance::Data;
using conformance::Dictionary;
using conformance::kUuidText;
using conformance::makeDictionary;
using conformance::makeNumber;
using conformance::makeString;
using conformance::makeUuid;
using conformance::Number;
using conformance::read32;
using conformance::String;
using conformance::textOf;
using conformance::Url;
using conformance::Uuid;
using platform::ScopedPool;
using platform::calls::Call;
using platform::calls::Fault;
using platform::calls::removeAllHooks;
using platform::calls::setHook;

// What the library's constants are while this program's static initialisers run.
const CFBooleanRef true_at_start = kCFBooleanTrue;
const CFBooleanRef false_at_start = kCFBooleanFalse;
const CFTypeID type_of_true_at_start = CFGetTypeID(kCFBooleanTrue);
const CFStringRef constant_at_start = CFSTR("made at start");

/// What was written to stderr while `action` ran.
template <typename Action>
std::string stderrOf(const Action& action) {
  std::FILE* const file = std::tmpfile();
  const int kept = dup(STDERR_FILENO);
  std::fflush(stderr);
  dup2(fileno(file), STDERR_FILENO);
  action();
  std::fflush(stderr);
  dup2(kept, STDERR_FILENO);
  close(kept);
  std::string written(static_cast<std::size_t>(lseek(fileno(file), 0, SEEK_END)), '\0');
  const ssize_t read = pread(fileno(file), written.data(), written.size(), 0);
  std::fclose(file);
  return read == static_cast<ssize_t>(written.size()) ? written : "stderr could not be read back";
}

/// Hooks are the process's; a test that set one leaves none behind.
class Hooked : public testing::Test {
 protected:
  ~Hooked() override { removeAllHooks(); }
  static void fail(Call call) {
    setHook(call, [](std::uint64_t) { return Fault{.fail = true}; });
  }
};

// --- constants

TEST(Constants, AreReadyWhileStaticInitialisersRun) {
  EXPECT_NE(true_at_start, nullptr);
  EXPECT_NE(false_at_start, nullptr);
  EXPECT_EQ(true_at_start, kCFBooleanTrue);
  EXPECT_EQ(type_of_true_at_start, CFBooleanGetTypeID());
  EXPECT_EQ(constant_at_start, CFSTR("made at start"));
}

// --- every type

TEST(Retain, AddsOneReference) {
  const String string = makeString("a string that is long enough to be an object of its own");
  const CFIndex before = CFGetRetainCount(string.get());
  CFRetain(string.get());
  EXPECT_EQ(CFGetRetainCount(string.get()), before + 1);
  CFRelease(string.get());
  EXPECT_EQ(CFGetRetainCount(string.get()), before);
}

TEST(Autorelease, ReleasesWhenThePoolIsDrained) {
  const String string = makeString("autoreleased once");
  {
    const ScopedPool pool;
    EXPECT_EQ(CFAutorelease(CFRetain(string.get())), string.get());
    EXPECT_EQ(CFGetRetainCount(string.get()), 2);
  }
  EXPECT_EQ(CFGetRetainCount(string.get()), 1);
}

TEST(Pools, ReleaseWhatWasAutoreleasedSinceThePush) {
  int deaths = 0;
  void* const outer = objc_autoreleasePoolPush();
  probe::autoreleaseCounter(&deaths);
  void* const inner = objc_autoreleasePoolPush();
  probe::autoreleaseCounter(&deaths);
  objc_autoreleasePoolPop(inner);
  EXPECT_EQ(deaths, 1);
  objc_autoreleasePoolPop(outer);
  EXPECT_EQ(deaths, 2);
}

TEST(NullDeath, AbortsTheProcess) {
  EXPECT_DEATH(CFRetain(nullptr), "CFRetain: null object");
  EXPECT_DEATH(CFRelease(nullptr), "CFRelease: null object");
  EXPECT_DEATH(CFAutorelease(nullptr), "CFAutorelease: null object");
  EXPECT_DEATH(CFGetRetainCount(nullptr), "CFGetRetainCount: null object");
  EXPECT_DEATH(CFEqual(nullptr, kCFBooleanTrue), "CFEqual: null object");
  EXPECT_DEATH(CFEqual(kCFBooleanTrue, nullptr), "CFEqual: null object");
  EXPECT_DEATH(CFEqual(nullptr, nullptr), "CFEqual: null object");
  EXPECT_DEATH(CFGetTypeID(nullptr), "CFGetTypeID: null object");
}

TEST(NullDeath, AbortsTheProcessInFunctionsOfOneType) {
  std::int32_t number = 0;
  char buffer[8];
  EXPECT_DEATH(CFStringGetLength(nullptr), "CFStringGetLength: null");
  EXPECT_DEATH(CFStringGetCString(nullptr, buffer, 8, kCFStringEncodingUTF8), "CFStringGetCString: null");
  EXPECT_DEATH(CFURLCreateWithFileSystemPath(nullptr, nullptr, kCFURLPOSIXPathStyle, false), "null object");
  EXPECT_DEATH(CFURLCopyFileSystemPath(nullptr, kCFURLPOSIXPathStyle), "CFURLCopyFileSystemPath: null");
  EXPECT_DEATH(CFURLGetString(nullptr), "CFURLGetString: null");
  EXPECT_DEATH(CFDataGetLength(nullptr), "CFDataGetLength: null");
  EXPECT_DEATH(CFDataGetBytePtr(nullptr), "CFDataGetBytePtr: null");
  EXPECT_DEATH(CFDictionaryGetCount(nullptr), "CFDictionaryGetCount: null");
  EXPECT_DEATH(CFDictionaryGetValue(nullptr, CFSTR("key")), "CFDictionaryGetValue: null");
  EXPECT_DEATH(CFNumberGetValue(nullptr, kCFNumberSInt32Type, &number), "CFNumberGetValue: null");
  EXPECT_DEATH(CFUUIDCreateString(nullptr, nullptr), "CFUUIDCreateString: null");
  EXPECT_DEATH(CFUUIDGetUUIDBytes(nullptr), "CFUUIDGetUUIDBytes: null");
}

TEST(TypeIds, AreOneForOtherObjects) {
  EXPECT_EQ(CFGetTypeID(OwnedRef<CFTypeRef>::adopt(probe::createOtherObject()).get()), 1U);
}

// --- hooks

TEST_F(Hooked, CallsReturnTheirFailureValues) {
  const String string = makeString("text");
  const Dictionary dictionary = makeDictionary({CFSTR("a")}, {kCFBooleanTrue});
  const Number number = makeNumber(1);
  const Uuid uuid = makeUuid(kUuidText);
  const void* value = nullptr;
  std::int32_t integer = 0;
  for (std::size_t i = 0; i < platform::calls::kCallCount; ++i) {
    fail(static_cast<Call>(i));
  }
  EXPECT_FALSE(CFEqual(string.get(), string.get()));
  EXPECT_FALSE(makeDictionary({}, {}));
  EXPECT_EQ(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr), nullptr);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), nullptr);
  EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), &value));
  EXPECT_FALSE(CFNumberGetValue(number.get(), kCFNumberSInt32Type, &integer));
  EXPECT_EQ(CFUUIDCreateString(nullptr, uuid.get()), nullptr);
}

TEST(Counts, GrowWithEveryCall) {
  const std::uint64_t before = platform::calls::count(Call::CFEqual);
  CFEqual(kCFBooleanTrue, kCFBooleanTrue);
  CFEqual(kCFBooleanTrue, kCFBooleanFalse);
  EXPECT_EQ(platform::calls::count(Call::CFEqual), before + 2);
}

// --- threads without a pool

TEST(ThreadWithoutAPool, WritesNothingToStderr) {
  const std::string written = stderrOf([] {
    std::thread([] {
      const String string = makeString("a string from a thread with no pool");
      const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, string.get(), kCFURLPOSIXPathStyle, true));
      const String path = String::adopt(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
      const Url again = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, path.get(), kCFURLPOSIXPathStyle, false));
      CFEqual(url.get(), again.get());
      CFURLGetString(url.get());
      textOf(string.get());
      const Uuid uuid = makeUuid(kUuidText);
      const String text = String::adopt(CFUUIDCreateString(nullptr, uuid.get()));
      const Number number = makeNumber(INT64_MAX);
      read32(number.get());
      const Dictionary dictionary =
          makeDictionary({string.get(), url.get(), uuid.get()}, {number.get(), text.get(), path.get()});
      CFEqual(dictionary.get(), makeDictionary({string.get()}, {number.get()}).get());
      std::array<const void*, 3> keys{};
      CFDictionaryGetKeysAndValues(dictionary.get(), keys.data(), nullptr);
      const Data data = Data::adopt(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>("abc"), 3));
      CFDataGetBytePtr(data.get());
      __CFStringMakeConstantString("made on a thread with no pool");
    }).join();
  });
  EXPECT_EQ(written, "");
}

TEST(LoadingThread, HasAPool) {
  EXPECT_EQ(stderrOf([] { CFAutorelease(CFRetain(CFSTR("autoreleased without another pool"))); }), "");
}

}  // namespace
}  // namespace core_foundation_test
