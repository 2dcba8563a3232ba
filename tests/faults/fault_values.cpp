#include "faults/fault_values.h"

#include <cstdint>
#include <limits>
#include <map>

namespace faults {
namespace {

using platform::calls::Call;
using platform::calls::Fault;
using platform::desktop::Rect;
using Faults = std::vector<NamedFault>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const NamedFault kFailure = {"failure", {.fail = true}};

Faults operator+(Faults first, const Faults& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

NamedFault object(const std::string& name, CFTypeRef value) { return {name, {.object = value}}; }

/// Null; for calls whose result is always of its declared type.
Faults null() { return {kFailure}; }

/// Null, and an object of every type: for calls that return values of a dictionary.
Faults anyObject() {
  Faults faults = null();
  for (const NamedObject& sample : sampleObjects()) {
    faults.push_back(object(sample.name, sample.object));
  }
  return faults;
}

Faults oddStrings() {
  return {object("an empty string", emptyString()), object("a string without UTF-8", brokenString())};
}

Faults strings() { return null() + Faults{object("another string", sampleObject("a string"))} + oddStrings(); }

/// Without an immutable dictionary: nothing could tell that it cannot be changed.
Faults mutableDictionaries() { return null() + Faults{object("a used dictionary", mutableDictionary())}; }

Faults dictionaries() {
  return null() + Faults{object("another dictionary", sampleObject("a dictionary")),
                         object("an empty dictionary", emptyDictionary())};
}

Faults numbers(const std::vector<std::int64_t>& values) {
  Faults faults = {kFailure};
  for (const std::int64_t value : values) {
    faults.push_back({std::to_string(value), {.number = value}});
  }
  return faults;
}

/// An error code with nothing written; 0 is success with nothing written.
Faults codes() {
  Faults faults = {kFailure};
  for (const std::int32_t code : {-1, 1, 1001, std::numeric_limits<std::int32_t>::min(), 0}) {
    faults.push_back({"code " + std::to_string(code), {.error = code}});
  }
  return faults;
}

/// An error code although everything was written.
const NamedFault kLateError = {"late code 1001", {.late_error = 1001}};

Faults rects() {
  return {kFailure,
          {"no place", {.rect = Rect{kNan, kNan, kNan, kNan}}},
          {"everywhere", {.rect = Rect{-kInfinity, -kInfinity, kInfinity, kInfinity}}},
          {"far away", {.rect = Rect{1e300, -1e300, 1e300, 1e300}}},
          {"inside out", {.rect = Rect{10, 10, -5, -5}}}};
}

Faults scales() {
  Faults faults = {kFailure};
  for (const double scale : {0.5, -1.0, kNan, kInfinity}) {
    faults.push_back({"scale " + std::to_string(scale), {.real = scale}});
  }
  return faults;
}

Faults handles() { return numbers({1, 0xDEAD, 0xFFFFFFFF}); }

/// With counts that need too much memory, or do not fit.
Faults displayCounts() { return codes() + Faults{kLateError} + numbers({0, 1, 65536, UINT32_MAX}); }

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kTooMuch = std::int64_t{1} << 45;

/// Lengths and counts that are too small or absurd. One that is a little too large would point behind the memory.
Faults sizes() { return numbers({0, -1, kLeast}); }
Faults absurdSizes() { return numbers({0, -1, kLeast, kTooMuch, kMost}); }

const std::map<Call, Faults>& table() {
  static const std::map<Call, Faults> faults = {
      {Call::CFEqual, numbers({1})},
      {Call::CFStringGetLength, absurdSizes()},
      {Call::CFDataGetBytePtr, {kFailure}},
      {Call::CFDataGetLength, sizes()},
      {Call::CFDictionaryCreate, dictionaries()},
      {Call::CFDictionaryCreateMutable, mutableDictionaries()},
      {Call::CFDictionaryGetCount, absurdSizes()},
      {Call::CFDictionaryGetKeysAndValues, anyObject() + oddStrings()},
      {Call::CFDictionaryGetValue, anyObject() + oddStrings()},
      {Call::CFDictionaryGetValueIfPresent, anyObject() + numbers({1})},
      {Call::CFDictionarySetValue, {kFailure}},
      {Call::CFNumberGetValue, numbers({0, -1, kMost})},
      {Call::CFUUIDCreateString, strings()},
      {Call::CGGetActiveDisplayList, displayCounts()},
      {Call::CGGetDisplaysWithRect, displayCounts()},
      {Call::CGDisplayBounds, rects()},
      {Call::CGDisplayVendorNumber, numbers({0, 1})},
      {Call::CGDisplayModelNumber, numbers({0, 77})},
      {Call::CGDisplaySerialNumber, numbers({0, 1})},
      {Call::CGColorSpaceCreateWithPlatformColorSpace, null()},
      {Call::CGColorSpaceIsWideGamutRGB, {kFailure}},
      {Call::ColorSyncIterateDeviceProfiles, {kFailure}},
      {Call::ColorSyncDeviceSetCustomProfiles, numbers({1})},
      {Call::ColorSyncIterateInstalledProfiles, {kFailure}},
      {Call::ColorSyncProfileCreateWithURL, null()},
      {Call::ColorSyncProfileCopyTag,
       null() + Faults{object("other data", sampleObject("data")), object("no data", emptyData()),
                       object("little data", shortData())}},
      {Call::CGDisplayCreateUUIDFromDisplayID, null() + Faults{object("another UUID", sampleObject("a UUID"))}},
      {Call::CGDisplayGetDisplayIDFromUUID, numbers({2, 77, UINT32_MAX})},
      {Call::NSScreen_screens, null() + Faults{object("an empty list", emptyArray())}},
      {Call::NSScreen_mainScreen, null()},
      {Call::NSScreen_frame, rects()},
      {Call::NSScreen_backingScaleFactor, scales()},
      {Call::IOServiceMatching, dictionaries()},
      {Call::IOServiceGetMatchingServices, codes() + Faults{kLateError} + handles()},
      {Call::IOIteratorNext, handles()},
      {Call::IOObjectRelease, codes()},
      {Call::IODisplayCreateInfoDictionary, dictionaries()},
      {Call::dispatch_queue_create, {kFailure}},
      {Call::dispatch_async, {kFailure}},
  };
  return faults;
}

}  // namespace

const std::vector<NamedFault>& faultsOf(Call call) {
  static const Faults kNone;
  const auto listed = table().find(call);
  return listed != table().end() ? listed->second : kNone;
}

// --- messages

const std::vector<MessageFault>& messageFaults() {
  static const std::vector<MessageFault> faults = {
      {"UTF8String", "null", nullptr},
      {"UTF8String", "an empty text", ""},
      {"UTF8String", "invalid UTF-8", "\xFF\xFE\xC0"},
      {"path", "null", nullptr},
      {"path", "an empty string", emptyString()},
      {"path", "a string without UTF-8", brokenString()},
      {"stringWithUTF8String:", "null", nullptr},
      {"stringWithUTF8String:", "an empty string", emptyString()},
      {"stringWithUTF8String:", "a string without UTF-8", brokenString()},
      {"fileURLWithPath:", "null", nullptr},
      {"fileURLWithPath:", "another URL", sampleObject("a URL")},
  };
  return faults;
}

// --- the host

namespace {

void doNothing() {}
void* returnNull() { return nullptr; }

/// The host owns its texts.
const char* returnEmptyText(const void*) { return ""; }
const char* returnBrokenText(const void*) { return "\xFF\xFE\xC0"; }
const char* returnPartOfACharacter(const void*) { return "/\xE2\x82"; }
const char* returnLongText(const void*) {
  static const std::string text(1 << 20, 'x');
  return text.c_str();
}

std::int64_t returnZero(const void*) { return 0; }
std::int64_t returnMinusOne(const void*) { return -1; }
std::int64_t returnMost(const void*) { return std::numeric_limits<std::int64_t>::max(); }

template <auto kFunction>
void* returnAddressOf() {
  return reinterpret_cast<void*>(kFunction);
}

HostFault missing(const char* entry) {
  return {entry, "missing", [=](devhost::Host& host) { host.entries().remove(entry); }};
}

template <typename Function>
HostFault returning(const char* entry, const char* name, Function* function) {
  return {entry, name, [=](devhost::Host& host) { host.entries().set(entry, function); }};
}

}  // namespace

const std::vector<HostFault>& hostFaults() {
  static const std::vector<HostFault> faults = {
      missing("PluginRegisterModule"),
      returning("PluginRegisterModule", "doing nothing", doNothing),
      missing("REALBuildStringWithEncoding"),
      returning("REALBuildStringWithEncoding", "null", returnNull),
      missing("StringGetCString"),
      returning("StringGetCString", "null", returnNull),
      returning("StringGetCString", "an empty text", returnEmptyText),
      returning("StringGetCString", "invalid UTF-8", returnBrokenText),
      returning("StringGetCString", "part of a character", returnPartOfACharacter),
      returning("StringGetCString", "a long text", returnLongText),
      missing("REALLoadGlobalMethod"),
      returning("REALLoadGlobalMethod", "null", returnNull),
      returning("REALLoadGlobalMethod", "a length of 0", returnAddressOf<returnZero>),
      returning("REALLoadGlobalMethod", "a length of -1", returnAddressOf<returnMinusOne>),
      returning("REALLoadGlobalMethod", "the greatest length", returnAddressOf<returnMost>),
      missing("REALUnlockString"),
      returning("REALUnlockString", "doing nothing", doNothing),
      missing("REALLoadObjectMethod"),
      returning("REALLoadObjectMethod", "null", returnNull),
      missing("RuntimeArrayCreateSingleDimBoundedArray"),
      returning("RuntimeArrayCreateSingleDimBoundedArray", "null", returnNull),
      missing("PluginStringArrayInsertProc"),
      returning("PluginStringArrayInsertProc", "null", returnNull),
      returning("PluginStringArrayInsertProc", "doing nothing", returnAddressOf<doNothing>),
  };
  return faults;
}

}  // namespace faults
