// CoreFoundation over the system's Foundation.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "frameworks/autorelease_pool.h"
#include "frameworks/calls.h"
#include "frameworks/uuids.h"
#include "platform/foundation_probe.h"
#include "strings/owned_ref.h"

namespace {

using platform::ScopedPool;
using platform::calls::Answer;
using platform::calls::Call;
using platform::calls::removeAllHooks;
using platform::calls::setHook;
using testing::ElementsAre;

using String = OwnedRef<CFStringRef>;
using Url = OwnedRef<CFURLRef>;
using Data = OwnedRef<CFDataRef>;
using Number = OwnedRef<CFNumberRef>;
using Dictionary = OwnedRef<CFDictionaryRef>;
using Uuid = OwnedRef<CFUUIDRef>;

// What the library's constants are while this program's static initialisers run.
const CFBooleanRef true_at_start = kCFBooleanTrue;
const CFBooleanRef false_at_start = kCFBooleanFalse;
const CFTypeID type_of_true_at_start = CFGetTypeID(kCFBooleanTrue);
const CFStringRef constant_at_start = CFSTR("made at start");

String makeString(const std::string& utf8) {
  return String::adopt(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                               static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

std::optional<std::string> textOf(CFStringRef string) {
  std::vector<char> buffer(1 + static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(CFStringGetLength(string),
                                                                                          kCFStringEncodingUTF8)));
  if (!CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(buffer.size()), kCFStringEncodingUTF8)) {
    return std::nullopt;
  }
  return buffer.data();
}

Number makeNumber(std::int64_t value) {
  return Number::adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

std::pair<bool, std::int32_t> read32(CFNumberRef number) {
  std::int32_t value = 12345;
  const bool exact = CFNumberGetValue(number, kCFNumberSInt32Type, &value) != 0;
  return {exact, value};
}

std::pair<bool, std::int64_t> read64(CFNumberRef number) {
  std::int64_t value = 12345;
  const bool exact = CFNumberGetValue(number, kCFNumberSInt64Type, &value) != 0;
  return {exact, value};
}

Dictionary makeDictionary(std::vector<const void*> keys, std::vector<const void*> values) {
  return Dictionary::adopt(CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                              static_cast<CFIndex>(keys.size()), &kCFTypeDictionaryKeyCallBacks,
                                              &kCFTypeDictionaryValueCallBacks));
}

constexpr const char* kUuidText = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
constexpr CFUUIDBytes kUuidBytes = {0xE6, 0x21, 0xE1, 0xF8, 0xC3, 0x6C, 0x49, 0x5A,
                                    0x93, 0xFC, 0x0C, 0x24, 0x7A, 0x3E, 0x6E, 0x5F};

Uuid makeUuid(const std::string& text) {
  return Uuid::adopt(CFUUIDCreateFromString(kCFAllocatorDefault, makeString(text).get()));
}

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
    setHook(call, [](std::uint64_t) { return Answer{.fail = true}; });
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

TEST(Constants, TrueIsNotFalse) {
  EXPECT_NE(kCFBooleanTrue, kCFBooleanFalse);
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, kCFBooleanFalse));
}

TEST(Constants, TheDefaultAllocatorIsNull) { EXPECT_EQ(kCFAllocatorDefault, nullptr); }

// --- every type

TEST(Retain, ReturnsTheObjectWithOneMoreReference) {
  const String string = makeString("a string that is long enough to be an object of its own");
  const CFIndex before = CFGetRetainCount(string.get());
  EXPECT_EQ(CFRetain(string.get()), string.get());
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

TEST(NullDeath, StopsTheProcess) {
  EXPECT_DEATH(CFRetain(nullptr), "CFRetain: null is no object");
  EXPECT_DEATH(CFRelease(nullptr), "CFRelease: null is no object");
  EXPECT_DEATH(CFAutorelease(nullptr), "CFAutorelease: null is no object");
  EXPECT_DEATH(CFGetRetainCount(nullptr), "CFGetRetainCount: null is no object");
  EXPECT_DEATH(CFEqual(nullptr, kCFBooleanTrue), "CFEqual: null is no object");
  EXPECT_DEATH(CFEqual(kCFBooleanTrue, nullptr), "CFEqual: null is no object");
  EXPECT_DEATH(CFEqual(nullptr, nullptr), "CFEqual: null is no object");
  EXPECT_DEATH(CFGetTypeID(nullptr), "CFGetTypeID: null is no object");
}

TEST(NullDeath, StopsTheProcessInFunctionsOfOneType) {
  std::int32_t number = 0;
  char buffer[8];
  EXPECT_DEATH(CFStringGetLength(nullptr), "CFStringGetLength: null");
  EXPECT_DEATH(CFStringGetCString(nullptr, buffer, 8, kCFStringEncodingUTF8), "CFStringGetCString: null");
  EXPECT_DEATH(CFURLCreateWithFileSystemPath(nullptr, nullptr, kCFURLPOSIXPathStyle, false), "null is no object");
  EXPECT_DEATH(CFURLCopyFileSystemPath(nullptr, kCFURLPOSIXPathStyle), "CFURLCopyFileSystemPath: null");
  EXPECT_DEATH(CFURLGetString(nullptr), "CFURLGetString: null");
  EXPECT_DEATH(CFDataGetLength(nullptr), "CFDataGetLength: null");
  EXPECT_DEATH(CFDataGetBytePtr(nullptr), "CFDataGetBytePtr: null");
  EXPECT_DEATH(CFDictionaryGetCount(nullptr), "CFDictionaryGetCount: null");
  EXPECT_DEATH(CFDictionaryGetValue(nullptr, CFSTR("key")), "CFDictionaryGetValue: null");
  EXPECT_DEATH(CFNumberGetValue(nullptr, kCFNumberSInt32Type, &number), "CFNumberGetValue: null");
  EXPECT_DEATH(CFUUIDCreateString(nullptr, nullptr), "CFUUIDCreateString: null");
  EXPECT_DEATH(CFUUIDGetUUIDBytes(nullptr), "CFUUIDGetUUIDBytes: null");
  EXPECT_DEATH(CFUUIDCreateFromString(nullptr, nullptr), "CFUUIDCreateFromString: null");
}

TEST(TypeIds, AreDistinct) {
  const std::set<CFTypeID> ids = {CFBooleanGetTypeID(), CFDataGetTypeID(), CFDictionaryGetTypeID(), CFNumberGetTypeID(),
                                  CFStringGetTypeID(),  CFURLGetTypeID(),  CFUUIDGetTypeID()};
  EXPECT_EQ(ids.size(), 7U);
}

TEST(TypeIds, AreTheirObjects) {
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  const Data data = Data::adopt(CFDataCreate(nullptr, nullptr, 0));
  const Uuid uuid = makeUuid(kUuidText);
  const auto mutable_dictionary = OwnedRef<CFMutableDictionaryRef>::adopt(
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  const auto other = OwnedRef<CFTypeRef>::adopt(probe::createOtherObject());
  EXPECT_EQ(CFGetTypeID(CFSTR("constant")), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeString("made").get()), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeString("gem\xC3\xA4\xC3\x9F").get()), CFStringGetTypeID());
  EXPECT_EQ(CFGetTypeID(url.get()), CFURLGetTypeID());
  EXPECT_EQ(CFGetTypeID(data.get()), CFDataGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeDictionary({}, {}).get()), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetTypeID(mutable_dictionary.get()), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID(kCFBooleanFalse), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeNumber(0).get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(makeNumber(1).get()), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(uuid.get()), CFUUIDGetTypeID());
  EXPECT_EQ(CFGetTypeID(other.get()), 1U);
}

TEST(Equal, ComparesValues) {
  EXPECT_TRUE(CFEqual(makeString("text").get(), CFSTR("text")));
  EXPECT_FALSE(CFEqual(makeString("text").get(), CFSTR("Text")));
  EXPECT_TRUE(CFEqual(makeNumber(7).get(), makeNumber(7).get()));
  EXPECT_FALSE(CFEqual(makeNumber(7).get(), makeString("7").get()));
  EXPECT_FALSE(CFEqual(makeString("7").get(), makeNumber(7).get()));
}

TEST(Equal, ABooleanEqualsNoNumber) {
  EXPECT_FALSE(CFEqual(kCFBooleanTrue, makeNumber(1).get()));
  EXPECT_FALSE(CFEqual(makeNumber(1).get(), kCFBooleanTrue));
  EXPECT_FALSE(CFEqual(kCFBooleanFalse, makeNumber(0).get()));
  EXPECT_TRUE(CFEqual(kCFBooleanTrue, kCFBooleanTrue));
}

// --- strings

TEST(ConstantStrings, AreOnePerText) {
  const std::string copy = "one per text";
  EXPECT_EQ(CFSTR("one per text"), __CFStringMakeConstantString(copy.c_str()));
  EXPECT_NE(CFSTR("one per text"), CFSTR("another text"));
}

TEST(ConstantStrings, AreTheSameOnEveryThread) {
  constexpr int kThreads = 4;
  constexpr int kTexts = 200;
  std::array<std::vector<CFStringRef>, kThreads> made;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (auto& strings : made) {
    threads.emplace_back([&strings] {
      for (int i = 0; i < kTexts; ++i) {
        strings.push_back(__CFStringMakeConstantString(("shared " + std::to_string(i)).c_str()));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& strings : made) {
    EXPECT_EQ(strings, made[0]);
  }
}

TEST(StringCreate, TakesUtf8WithNulsInIt) {
  const std::string text("a\0\xC3\xA9\xF0\x9F\x98\x80", 8);
  const String string = makeString(text);
  ASSERT_TRUE(string);
  EXPECT_EQ(CFStringGetLength(string.get()), 5);
  std::array<char, 16> buffer{};
  EXPECT_TRUE(CFStringGetCString(string.get(), buffer.data(), buffer.size(), kCFStringEncodingUTF8));
  EXPECT_EQ(std::string(buffer.data(), text.size()), text);
}

TEST(StringCreate, OfNothingIsTheEmptyString) {
  const String string = String::adopt(CFStringCreateWithBytes(nullptr, nullptr, 0, kCFStringEncodingUTF8, false));
  ASSERT_TRUE(string);
  EXPECT_EQ(CFStringGetLength(string.get()), 0);
  EXPECT_EQ(textOf(string.get()), "");
}

TEST(StringCreate, OfWhatIsNoUtf8IsNull) {
  for (const char* const bytes : {"\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xE2\x82", "\x80", "\xFF"}) {
    EXPECT_FALSE(makeString(bytes)) << testing::PrintToString(bytes);
  }
}

TEST(StringCreate, OfNoBytesOrANegativeLengthOrAnotherEncodingIsNull) {
  const UInt8 bytes[] = {'a'};
  constexpr CFStringEncoding kMacRoman = 0;
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, nullptr, 1, kCFStringEncodingUTF8, false), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, -1, kCFStringEncodingUTF8, false), nullptr);
  EXPECT_EQ(CFStringCreateWithBytes(nullptr, bytes, 1, kMacRoman, false), nullptr);
}

TEST(StringGetCString, NeedsRoomForTheTextAndItsEnd) {
  const String string = makeString("abc\xC3\xA9");
  std::array<char, 8> buffer{};
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), 5, kCFStringEncodingUTF8));
  EXPECT_TRUE(CFStringGetCString(string.get(), buffer.data(), 6, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer.data(), "abc\xC3\xA9");
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), 0, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), -1, kCFStringEncodingUTF8));
  EXPECT_FALSE(CFStringGetCString(string.get(), nullptr, 8, kCFStringEncodingUTF8));
}

TEST(MaximumSize, IsThreeBytesPerUnit) {
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(0, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(10, kCFStringEncodingUTF8), 30);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(std::numeric_limits<CFIndex>::max(), kCFStringEncodingUTF8), -1);
}

// --- URLs

TEST(UrlCreate, TakesTheCallersWordForADirectory) {
  const Url file = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/tmp"), kCFURLPOSIXPathStyle, false));
  const Url directory = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/no/x"), kCFURLPOSIXPathStyle, true));
  EXPECT_EQ(textOf(CFURLGetString(file.get())), "file:///tmp");
  EXPECT_EQ(textOf(CFURLGetString(directory.get())), "file:///no/x/");
}

TEST(UrlCreate, OfAnotherPathStyleIsNull) {
  EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/tmp"), static_cast<CFURLPathStyle>(2), false), nullptr);
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  EXPECT_EQ(CFURLCopyFileSystemPath(url.get(), static_cast<CFURLPathStyle>(2)), nullptr);
}

TEST(UrlCopyPath, UnescapesAndDropsTheTrailingSlash) {
  const String path = makeString("/a b#c?d%41/\xC3\xA9");
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, path.get(), kCFURLPOSIXPathStyle, true));
  const String copied = String::adopt(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
  EXPECT_EQ(textOf(CFURLGetString(url.get())), "file:///a%20b%23c%3Fd%2541/%C3%A9/");
  EXPECT_EQ(textOf(copied.get()), "/a b#c?d%41/\xC3\xA9");
}

// --- data

TEST(DataCreate, CopiesTheBytes) {
  std::array<UInt8, 3> bytes = {1, 0, 3};
  const Data data = Data::adopt(CFDataCreate(nullptr, bytes.data(), bytes.size()));
  bytes.fill(9);
  ASSERT_EQ(CFDataGetLength(data.get()), 3);
  const UInt8* const kept = CFDataGetBytePtr(data.get());
  EXPECT_THAT(std::vector<UInt8>(kept, kept + 3), ElementsAre(1, 0, 3));
}

TEST(DataCreate, OfNothingIsEmptyAndOfNonsenseIsNull) {
  const Data empty = Data::adopt(CFDataCreate(nullptr, nullptr, 0));
  ASSERT_TRUE(empty);
  EXPECT_EQ(CFDataGetLength(empty.get()), 0);
  const UInt8 byte = 1;
  EXPECT_EQ(CFDataCreate(nullptr, nullptr, 1), nullptr);
  EXPECT_EQ(CFDataCreate(nullptr, &byte, -1), nullptr);
}

// --- dictionaries

TEST(DictionaryCreate, HoldsItsKeysAndValues) {
  const String value = makeString("a value that is an object of its own");
  const CFIndex before = CFGetRetainCount(value.get());
  {
    const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("b")}, {value.get(), kCFBooleanTrue});
    EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), value.get());
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeString("b").get()), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("c")), nullptr);
    EXPECT_EQ(CFGetRetainCount(value.get()), before + 1);
  }
  EXPECT_EQ(CFGetRetainCount(value.get()), before);
}

TEST(DictionaryCreate, KeepsTheFirstOfEqualKeys) {
  const Dictionary dictionary = makeDictionary({CFSTR("a"), CFSTR("a")}, {kCFBooleanTrue, kCFBooleanFalse});
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 1);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), kCFBooleanTrue);
}

TEST(DictionaryCreate, TakesUuidsUrlsAndNumbersForKeys) {
  const Uuid uuid = makeUuid(kUuidText);
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  const Number number = makeNumber(5);
  const Dictionary dictionary =
      makeDictionary({uuid.get(), url.get(), number.get()}, {CFSTR("uuid"), CFSTR("url"), CFSTR("number")});
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), uuid.get()), CFSTR("uuid"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), url.get()), CFSTR("url"));
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), makeNumber(5).get()), CFSTR("number"));
}

TEST(DictionaryCreate, OfANegativeCountIsNull) {
  EXPECT_EQ(CFDictionaryCreate(nullptr, nullptr, nullptr, -1, &kCFTypeDictionaryKeyCallBacks,
                               &kCFTypeDictionaryValueCallBacks),
            nullptr);
}

TEST(DictionaryDeath, OfNullsOrOfOtherCallBacksStopsTheProcess) {
  EXPECT_DEATH(makeDictionary({nullptr}, {CFSTR("value")}), "CFDictionaryCreate: null is no object");
  EXPECT_DEATH(makeDictionary({CFSTR("key")}, {nullptr}), "CFDictionaryCreate: null is no object");
  EXPECT_DEATH(CFDictionaryCreate(nullptr, nullptr, nullptr, 0, nullptr, nullptr), "only dictionaries of objects");
  EXPECT_DEATH(CFDictionaryGetValue(makeDictionary({}, {}).get(), nullptr), "CFDictionaryGetValue: null is no object");
}

TEST(MutableDictionary, TakesAndReplacesValues) {
  const auto dictionary = OwnedRef<CFMutableDictionaryRef>::adopt(
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  CFDictionarySetValue(dictionary.get(), CFSTR("a"), CFSTR("1"));
  CFDictionarySetValue(dictionary.get(), CFSTR("a"), CFSTR("2"));
  CFDictionarySetValue(dictionary.get(), CFSTR("b"), CFSTR("3"));
  EXPECT_EQ(CFDictionaryGetCount(dictionary.get()), 2);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), CFSTR("2"));
}

TEST(GetValueIfPresent, WritesOnlyWhatIsThere) {
  const Dictionary dictionary = makeDictionary({CFSTR("a")}, {kCFBooleanTrue});
  const void* value = CFSTR("untouched");
  EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("b"), &value));
  EXPECT_EQ(value, CFSTR("untouched"));
  EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), &value));
  EXPECT_EQ(value, kCFBooleanTrue);
  EXPECT_TRUE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), nullptr));
}

TEST(GetKeysAndValues, GivesEachKeyItsValue) {
  const Dictionary dictionary =
      makeDictionary({CFSTR("a"), CFSTR("b"), CFSTR("c")}, {CFSTR("va"), CFSTR("vb"), CFSTR("vc")});
  std::array<const void*, 3> keys{};
  std::array<const void*, 3> values{};
  CFDictionaryGetKeysAndValues(dictionary.get(), keys.data(), values.data());
  std::set<std::string> pairs;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    pairs.insert(*textOf(static_cast<CFStringRef>(keys[i])) + *textOf(static_cast<CFStringRef>(values[i])));
  }
  EXPECT_THAT(pairs, ElementsAre("ava", "bvb", "cvc"));
  std::array<const void*, 3> only_keys{};
  CFDictionaryGetKeysAndValues(dictionary.get(), only_keys.data(), nullptr);
  EXPECT_EQ(only_keys, keys);
  CFDictionaryGetKeysAndValues(dictionary.get(), nullptr, nullptr);
}

// --- numbers

TEST(Numbers, KeepTheirValues) {
  for (const std::int64_t value : std::initializer_list<std::int64_t>{0, -1, 1, INT32_MAX, INT32_MIN}) {
    EXPECT_THAT(read64(makeNumber(value).get()), testing::Pair(true, value));
    EXPECT_THAT(read32(makeNumber(value).get()), testing::Pair(true, value));
    const auto narrow = static_cast<std::int32_t>(value);
    const Number made = Number::adopt(CFNumberCreate(nullptr, kCFNumberSInt32Type, &narrow));
    EXPECT_THAT(read64(made.get()), testing::Pair(true, value));
  }
  EXPECT_THAT(read64(makeNumber(INT64_MAX).get()), testing::Pair(true, INT64_MAX));
  EXPECT_THAT(read64(makeNumber(INT64_MIN).get()), testing::Pair(true, INT64_MIN));
}

TEST(Numbers, BeyondTheReadersWidthAreCutAndSaySo) {
  EXPECT_THAT(read32(makeNumber(INT64_C(0x1234567890)).get()), testing::Pair(false, 0x34567890));
  EXPECT_THAT(read32(makeNumber(INT64_C(0x80000000)).get()), testing::Pair(false, INT32_MIN));
  EXPECT_THAT(read32(makeNumber(INT64_C(-0x80000001)).get()), testing::Pair(false, INT32_MAX));
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(static_cast<unsigned long long>(UINT64_MAX))).get()),
              testing::Pair(false, -1));
}

TEST(Numbers, WithFractionsAreCutAndSaySo) {
  EXPECT_THAT(read32(Number::adopt(probe::createNumber(2.75)).get()), testing::Pair(false, 2));
  EXPECT_THAT(read32(Number::adopt(probe::createNumber(-2.75)).get()), testing::Pair(false, -2));
  EXPECT_THAT(read32(Number::adopt(probe::createNumber(3.0)).get()), testing::Pair(true, 3));
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(1e30)).get()), testing::Pair(false, INT64_MAX));
  EXPECT_THAT(read64(Number::adopt(probe::createNumber(-1e30)).get()), testing::Pair(false, INT64_MIN));
  EXPECT_FALSE(read64(Number::adopt(probe::createNumber(std::nan(""))).get()).first);
}

TEST(Numbers, ABooleanReadsAsOneOrZero) {
  EXPECT_THAT(read32(reinterpret_cast<CFNumberRef>(kCFBooleanTrue)), testing::Pair(true, 1));
  EXPECT_THAT(read32(reinterpret_cast<CFNumberRef>(kCFBooleanFalse)), testing::Pair(true, 0));
}

TEST(Numbers, OfAnUnknownTypeAreNotMadeOrRead) {
  const double value = 1;
  double read = 2;
  constexpr auto kDouble = static_cast<CFNumberType>(13);
  EXPECT_EQ(CFNumberCreate(nullptr, kDouble, &value), nullptr);
  EXPECT_FALSE(CFNumberGetValue(makeNumber(1).get(), kDouble, &read));
  EXPECT_EQ(read, 2);
}

// --- UUIDs

TEST(Uuids, AreOneObjectPerValue) {
  const Uuid from_bytes = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
  const Uuid from_text = makeUuid(kUuidText);
  EXPECT_EQ(from_bytes.get(), from_text.get());
  EXPECT_EQ(CFGetRetainCount(from_bytes.get()), 2);
  EXPECT_NE(from_bytes.get(), makeUuid("E621E1F8-C36C-495A-93FC-0C247A3E6E50").get());
}

TEST(Uuids, GoWithTheirLastReferenceAndComeBack) {
  for (int round = 0; round < 3; ++round) {
    const Uuid uuid = makeUuid(kUuidText);
    EXPECT_EQ(CFGetRetainCount(uuid.get()), 1);
    EXPECT_EQ(textOf(String::adopt(CFUUIDCreateString(nullptr, uuid.get())).get()), kUuidText);
  }
}

TEST(Uuids, KeepTheirBytes) {
  const CFUUIDBytes bytes = CFUUIDGetUUIDBytes(makeUuid(kUuidText).get());
  EXPECT_EQ(std::memcmp(&bytes, &kUuidBytes, sizeof bytes), 0);
}

TEST(Uuids, AreReadInEitherCaseAndWrittenInUpperCase) {
  const Uuid uuid = makeUuid("e621e1f8-c36c-495a-93fc-0c247a3e6e5f");
  EXPECT_EQ(textOf(String::adopt(CFUUIDCreateString(nullptr, uuid.get())).get()), kUuidText);
}

TEST(Uuids, OfTextThatIsNotCanonicalAreNull) {
  for (const char* const text : {"", "E621E1F8", "E621E1F8C36C495A93FC0C247A3E6E5F",
                                 "E621E1F8-C36C-495A-93FC-0C247A3E6E5", "E621E1F8-C36C-495A-93FC-0C247A3E6E5F0",
                                 "{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}", "G621E1F8-C36C-495A-93FC-0C247A3E6E5F",
                                 "E621E1F80C36C-495A-93FC-0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5:",
                                 "\xC3\xA9"
                                 "21E1F8-C36C-495A-93FC-0C247A3E6E5F0"}) {
    EXPECT_FALSE(makeUuid(text)) << text;
  }
}

TEST(Uuids, TheFrameworksOwnMakerIsNeitherCountedNorHooked) {
  const std::uint64_t before = platform::calls::count(Call::CFUUIDCreateFromUUIDBytes);
  platform::desktop::Uuid bytes{};
  std::memcpy(bytes.data(), &kUuidBytes, sizeof kUuidBytes);
  const Uuid uuid = Uuid::adopt(platform::makeUuid(bytes));
  EXPECT_EQ(uuid.get(), makeUuid(kUuidText).get());
  EXPECT_EQ(platform::bytesOf(uuid.get()), bytes);
  EXPECT_EQ(platform::calls::count(Call::CFUUIDCreateFromUUIDBytes), before);
}

TEST(Uuids, AreMadeAndReleasedByManyThreadsAtOnce) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 5000;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  std::array<int, kThreads> wrong{};
  for (int& mistakes : wrong) {
    threads.emplace_back([&mistakes] {
      for (int i = 0; i < kRounds; ++i) {
        const Uuid first = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
        const Uuid second = Uuid::adopt(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes));
        mistakes += static_cast<int>(first.get() != second.get());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(wrong, testing::Each(0));
  EXPECT_EQ(CFGetRetainCount(makeUuid(kUuidText).get()), 1);
}

// --- hooks

TEST_F(Hooked, CallsAnswerTheirFailureValues) {
  const String string = makeString("text");
  const Dictionary dictionary = makeDictionary({CFSTR("a")}, {kCFBooleanTrue});
  const Url url = Url::adopt(CFURLCreateWithFileSystemPath(nullptr, CFSTR("/a"), kCFURLPOSIXPathStyle, false));
  const Number number = makeNumber(1);
  const Uuid uuid = makeUuid(kUuidText);
  std::array<char, 8> buffer{};
  const void* value = nullptr;
  std::int32_t integer = 0;
  for (std::size_t i = 0; i < platform::calls::kCallCount; ++i) {
    fail(static_cast<Call>(i));
  }
  EXPECT_FALSE(CFEqual(string.get(), string.get()));
  EXPECT_FALSE(makeString("text"));
  EXPECT_FALSE(CFStringGetCString(string.get(), buffer.data(), buffer.size(), kCFStringEncodingUTF8));
  EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, string.get(), kCFURLPOSIXPathStyle, false), nullptr);
  EXPECT_EQ(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle), nullptr);
  EXPECT_EQ(CFURLGetString(url.get()), nullptr);
  EXPECT_EQ(CFDataCreate(nullptr, nullptr, 0), nullptr);
  EXPECT_FALSE(makeDictionary({}, {}));
  EXPECT_EQ(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr), nullptr);
  EXPECT_EQ(CFDictionaryGetValue(dictionary.get(), CFSTR("a")), nullptr);
  EXPECT_FALSE(CFDictionaryGetValueIfPresent(dictionary.get(), CFSTR("a"), &value));
  EXPECT_EQ(CFNumberCreate(nullptr, kCFNumberSInt32Type, &integer), nullptr);
  EXPECT_FALSE(CFNumberGetValue(number.get(), kCFNumberSInt32Type, &integer));
  EXPECT_EQ(CFUUIDCreateFromUUIDBytes(nullptr, kUuidBytes), nullptr);
  EXPECT_EQ(CFUUIDCreateFromString(nullptr, string.get()), nullptr);
  EXPECT_EQ(CFUUIDCreateString(nullptr, uuid.get()), nullptr);
}

TEST(Counts, GrowWithEveryCall) {
  const std::uint64_t before = platform::calls::count(Call::CFEqual);
  CFEqual(kCFBooleanTrue, kCFBooleanTrue);
  CFEqual(kCFBooleanTrue, kCFBooleanFalse);
  EXPECT_EQ(platform::calls::count(Call::CFEqual), before + 2);
}

// --- threads without a pool

TEST(AThreadWithoutAPool, HearsNoComplaint) {
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

TEST(TheLoadingThread, HasAPool) {
  EXPECT_EQ(stderrOf([] { CFAutorelease(CFRetain(CFSTR("autoreleased without another pool"))); }), "");
}

}  // namespace
