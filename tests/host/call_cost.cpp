// Run under callgrind: makes each host call many times, and beside it the bare indirect call of the same function with
// the same arguments. Each series is one dump, named after the call: "member NAME" or "bare NAME". Standard output has
// a line "NAME|CALLS|LIMIT" for each pair: how many calls a series has, and how many instructions more the member may
// cost.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>

#include "host/host_calls.h"

// --- A host whose entries do as little as possible. The pointers to entries are not constant to the compiler, as the
// slots are not.

extern "C" {

std::uint64_t gHostResult = 1;
double gHostDouble = 1.5;

void* gEntryFour = nullptr;     ///< Takes up to four integers or pointers, returns gHostResult.
void* gEntryDouble = nullptr;   ///< Returns gHostDouble.
void* gEntryElement = nullptr;  ///< Returns gEntryFour.

__attribute__((noinline)) std::uint64_t entryFour(std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t) {
  return gHostResult;
}
__attribute__((noinline)) double entryDouble() { return gHostDouble; }
__attribute__((noinline)) void* entryElement(void*) { return gEntryFour; }

/// A member that the compiler cannot inline.
void (*gUnlockString)(REALstringStruct*) = &REALUnlockString;

}  // extern "C"

namespace {

constexpr int kCalls = 1000;

void* resolve(const char* name) {
  const std::string entry = name;
  if (entry == "REALGetRBVersion") {
    return gEntryDouble;
  }
  if (entry.ends_with("Proc")) {
    return gEntryElement;
  }
  if (entry == "REALLoadGlobalMethod") {
    return reinterpret_cast<void*>(&entryElement);  // returns gEntryFour as the method
  }
  return gEntryFour;
}

volatile std::uint64_t gSink;
volatile double gDoubleSink;

template <typename Body>
__attribute__((noinline)) void series(const char* name, Body body) {
  body();  // look-ups are not counted
  CALLGRIND_ZERO_STATS;
  for (int call = 0; call < kCalls; ++call) {
    body();
  }
  CALLGRIND_DUMP_STATS_AT(name);
}

/// What a member may cost beyond the indirect call.
constexpr int kLimit = 6;

template <typename Member, typename Bare>
void compare(const std::string& name, Member member, Bare bare, int limit = kLimit) {
  std::printf("%s|%d|%d\n", name.c_str(), kCalls, limit);
  series(("member " + name).c_str(), member);
  series(("bare " + name).c_str(), bare);
}

/// The indirect call itself.
template <typename Result, typename... Arguments>
inline Result bareCall(void* entry, Arguments... arguments) {
  return reinterpret_cast<Result (*)(Arguments...)>(entry)(arguments...);
}

int gObjectStorage;
const auto gObject = reinterpret_cast<REALobjectStruct*>(&gObjectStorage);
const auto gString = reinterpret_cast<REALstringStruct*>(&gObjectStorage);
const auto gArray = reinterpret_cast<REALarrayStruct*>(&gObjectStorage);

void compareThePluginsOwn() {
  compare(
      "REALUnlockString", [] { REALUnlockString(gString); }, [] { bareCall<void>(gEntryFour, gString); });
  compare(
      "REALBuildStringWithEncoding",
      [] { gSink = reinterpret_cast<std::uintptr_t>(REALBuildStringWithEncoding("abc", 3, kHostEncodingUTF8)); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, "abc", 3, kHostEncodingUTF8); });
  compare(
      "REALGetStringContents",
      [] { gSink = reinterpret_cast<std::uintptr_t>(REALGetStringContents(gString, nullptr)); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, gString); });
  compare(
      "REALLoadObjectMethod", [] { gSink = reinterpret_cast<std::uintptr_t>(REALLoadObjectMethod(gObject, "f()")); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, gObject, "f()"); });
  compare(
      "REALCreateArray", [] { gSink = reinterpret_cast<std::uintptr_t>(REALCreateArray(kHostArrayOfStrings, -1)); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, kHostArrayOfStrings, -1LL); });
  compare(
      "REALInsertArrayValueString", [] { REALInsertArrayValueString(gArray, 1, gString); },
      [] { bareCall<void>(bareCall<void*>(gEntryElement, gArray), gArray, 1LL, gString); });
}

void compareTheRest() {
  compare(
      "REALGetStringContents, with the length",
      [] {
        std::int64_t length;
        gSink = reinterpret_cast<std::uintptr_t>(REALGetStringContents(gString, &length));
        gSink = static_cast<std::uint64_t>(length);
      },
      [] {
        gSink = bareCall<std::uint64_t>(gEntryFour, gString);
        gSink = bareCall<std::uint64_t>(gEntryFour, gString);
      },
      2 * kLimit /* two calls of the host */);
  compare(
      "REALGetPropValueBoolean",
      [] {
        bool value;
        gSink = REALGetPropValueBoolean(gObject, "x", &value);
        gSink = value;
      },
      [] {
        std::uint8_t value = 0;
        gSink = bareCall<std::uint64_t>(gEntryFour, gObject, "x", &value);
        gSink = value;
      },
      kLimit + 2 /* it narrows the value as well as the answer */);
  compare(
      "REALUnlockString, not inlined", [] { gUnlockString(gString); }, [] { bareCall<void>(gEntryFour, gString); });
  compare(
      "REALGetPropValueInt32",
      [] {
        std::int32_t value;
        gSink = REALGetPropValueInt32(gObject, "x", &value);
      },
      [] {
        std::int32_t value;
        gSink = bareCall<std::uint64_t>(gEntryFour, gObject, "x", &value);
      });
  compare(
      "REALGetPropValueInt64",
      [] {
        std::int64_t value;
        gSink = REALGetPropValueInt64(gObject, "x", &value);
      },
      [] {
        std::int64_t value;
        gSink = bareCall<std::uint64_t>(gEntryFour, gObject, "x", &value);
      });
  compare(
      "REALSetPropValueSingle", [] { gSink = REALSetPropValueSingle(gObject, "x", 1.5F); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, gObject, "x", 1.5F); });
  compare(
      "REALGetControlEnabled", [] { gSink = REALGetControlEnabled(gObject); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, gObject); });
  compare(
      "REALGetFontEncoding", [] { gSink = REALGetFontEncoding(gObject); },
      [] { gSink = bareCall<std::uint64_t>(gEntryFour, gObject); });
  compare(
      "REALGetRBVersion", [] { gDoubleSink = REALGetRBVersion(); },
      [] { gDoubleSink = bareCall<double>(gEntryDouble); });
  compare(
      "REALMessageBox", [] { REALMessageBox(gString, 1, 2.5); }, [] { bareCall<void>(gEntryFour, gString, 1, 2.5); });
  compare(
      "REALGetArrayValueInt16",
      [] {
        std::int16_t value;
        REALGetArrayValueInt16(gArray, 1, &value);
        gSink = value;
      },
      [] { gSink = bareCall<std::int16_t>(bareCall<void*>(gEntryElement, gArray), gArray, 1LL); });
  compare(
      "REALSetArrayValueBoolean", [] { REALSetArrayValueBoolean(gArray, 1, true); },
      [] { bareCall<void>(bareCall<void*>(gEntryElement, gArray), gArray, true, 1LL); },
      kLimit + 1 /* it reduces the value to bit 0 */);
}

}  // namespace

int main() {
  gEntryFour = reinterpret_cast<void*>(&entryFour);
  gEntryDouble = reinterpret_cast<void*>(&entryDouble);
  gEntryElement = reinterpret_cast<void*>(&entryElement);
  gResolver = &resolve;
  compareThePluginsOwn();
  compareTheRest();
  return 0;
}
