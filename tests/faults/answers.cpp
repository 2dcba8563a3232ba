#include "faults/answers.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>

#include "faults/objects.h"

namespace faults {
namespace {

using platform::calls::Answer;
using platform::calls::Call;
using platform::desktop::Rect;
using Answers = std::vector<NamedAnswer>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const NamedAnswer kFailure = {"failure", {.fail = true}};

Answers operator+(Answers first, const Answers& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

NamedAnswer object(const std::string& name, CFTypeRef value) { return {name, {.object = value}}; }

/// Null, and an object of every type but the call's own.
Answers objectsBut(const std::string& own) {
  Answers answers = {kFailure};
  for (const NamedObject& sample : sampleObjects()) {
    if (sample.name != own) {
      answers.push_back(object(sample.name, sample.object));
    }
  }
  return answers;
}

Answers strings() {
  return objectsBut("a string") + Answers{object("another string", sampleObject("a string")),
                                          object("an empty string", emptyString()),
                                          object("a string that is no text", brokenString())};
}

/// A dictionary that cannot be changed is not among them: nobody could tell.
Answers mutableDictionaries() {
  return objectsBut("a dictionary") + Answers{object("a used dictionary", mutableDictionary())};
}

Answers dictionaries() {
  return objectsBut("a dictionary") + Answers{object("another dictionary", sampleObject("a dictionary")),
                                              object("an empty dictionary", emptyDictionary())};
}

Answers numbers(const std::vector<std::int64_t>& values) {
  Answers answers = {kFailure};
  for (const std::int64_t value : values) {
    answers.push_back({std::to_string(value), {.number = value}});
  }
  return answers;
}

/// An error code with nothing written; 0 is success with nothing written.
Answers codes() {
  Answers answers = {kFailure};
  for (const std::int32_t code : {-1, 1, 1001, std::numeric_limits<std::int32_t>::min(), 0}) {
    answers.push_back({"code " + std::to_string(code), {.error = code}});
  }
  return answers;
}

/// An error code although everything was written.
const NamedAnswer kLateError = {"late code 1001", {.late_error = 1001}};

Answers rects() {
  return {kFailure,
          {"no place", {.rect = Rect{kNan, kNan, kNan, kNan}}},
          {"everywhere", {.rect = Rect{-kInfinity, -kInfinity, kInfinity, kInfinity}}},
          {"far away", {.rect = Rect{1e300, -1e300, 1e300, 1e300}}},
          {"inside out", {.rect = Rect{10, 10, -5, -5}}}};
}

Answers scales() {
  Answers answers = {kFailure};
  for (const double scale : {0.5, -1.0, kNan, kInfinity}) {
    answers.push_back({"scale " + std::to_string(scale), {.real = scale}});
  }
  return answers;
}

Answers handles() { return numbers({1, 0xDEAD, 0xFFFFFFFF}); }

/// Absurd counts are those that ask for too much memory, or do not fit.
Answers displayCounts() { return codes() + Answers{kLateError} + numbers({0, 1, 65536, UINT32_MAX}); }

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kTooMuch = std::int64_t{1} << 45;

/// Lengths and counts that are too small or absurd. One that is a little too large could not be survived: it would say
/// that memory is there which is not.
Answers sizes() { return numbers({0, -1, kLeast}); }
Answers absurdSizes() { return numbers({0, -1, kLeast, kTooMuch, kMost}); }

const std::map<Call, Answers>& table() {
  static const std::map<Call, Answers> answers = {
      {Call::CFEqual, numbers({1})},
      {Call::CFStringGetCString, {kFailure}},
      {Call::CFStringGetLength, absurdSizes()},
      {Call::CFStringGetMaximumSizeForEncoding, absurdSizes()},
      {Call::CFURLCopyFileSystemPath, strings()},
      {Call::CFDataGetBytePtr, {kFailure}},
      {Call::CFDataGetLength, sizes()},
      {Call::CFDictionaryCreate, dictionaries()},
      {Call::CFDictionaryCreateMutable, mutableDictionaries()},
      {Call::CFDictionaryGetCount, absurdSizes()},
      {Call::CFDictionaryGetKeysAndValues,
       objectsBut("a string") +
           Answers{object("an empty string", emptyString()), object("a string that is no text", brokenString())}},
      {Call::CFDictionaryGetValue, objectsBut("") + Answers{object("an empty string", emptyString()),
                                                            object("a string that is no text", brokenString())}},
      {Call::CFDictionaryGetValueIfPresent, objectsBut("") + numbers({1})},
      {Call::CFDictionarySetValue, {kFailure}},
      {Call::CFNumberGetValue, numbers({0, -1, kMost})},
      {Call::CFUUIDCreateString, strings()},
      {Call::CGGetActiveDisplayList, displayCounts()},
      {Call::CGGetDisplaysWithRect, displayCounts()},
      {Call::CGDisplayBounds, rects()},
      {Call::CGDisplayVendorNumber, numbers({0, 1})},
      {Call::CGDisplayModelNumber, numbers({0, 77})},
      {Call::CGDisplaySerialNumber, numbers({0, 1})},
      {Call::CGColorSpaceCreateWithPlatformColorSpace, objectsBut("")},
      {Call::CGColorSpaceIsWideGamutRGB, {kFailure}},
      {Call::ColorSyncIterateDeviceProfiles, {kFailure}},
      {Call::ColorSyncDeviceSetCustomProfiles, numbers({1})},
      {Call::ColorSyncIterateInstalledProfiles, {kFailure}},
      {Call::ColorSyncProfileCreateWithURL, objectsBut("")},
      {Call::ColorSyncProfileCopyTag,
       objectsBut("data") + Answers{object("other data", sampleObject("data")), object("no data", emptyData()),
                                    object("little data", shortData())}},
      {Call::CGDisplayCreateUUIDFromDisplayID,
       objectsBut("a UUID") + Answers{object("another UUID", sampleObject("a UUID"))}},
      {Call::CGDisplayGetDisplayIDFromUUID, numbers({2, 77, UINT32_MAX})},
      {Call::NSScreen_screens, objectsBut("an array") + Answers{object("an empty list", emptyArray()),
                                                                object("a list of others", sampleObject("an array"))}},
      {Call::NSScreen_mainScreen, objectsBut("")},
      {Call::NSScreen_frame, rects()},
      {Call::NSScreen_backingScaleFactor, scales()},
      {Call::IOServiceMatching, dictionaries()},
      {Call::IOServiceGetMatchingServices, codes() + Answers{kLateError} + handles()},
      {Call::IOIteratorNext, handles()},
      {Call::IOObjectRelease, codes()},
      {Call::IODisplayCreateInfoDictionary, dictionaries()},
      {Call::dispatch_queue_create, {kFailure}},
      {Call::dispatch_async, {kFailure}},
  };
  return answers;
}

Answers withoutRepetitions(const Answers& answers) {
  Answers result;
  for (const NamedAnswer& answer : answers) {
    const bool is_known =
        std::any_of(result.begin(), result.end(), [&](const NamedAnswer& known) { return known.name == answer.name; });
    if (!is_known) {
      result.push_back(answer);
    }
  }
  return result;
}

}  // namespace

const std::vector<NamedAnswer>& answersOf(Call call) {
  static std::map<Call, Answers> answers;
  const auto known = answers.find(call);
  if (known != answers.end()) {
    return known->second;
  }
  const auto listed = table().find(call);
  return answers[call] = listed == table().end() ? Answers{} : withoutRepetitions(listed->second);
}

}  // namespace faults
