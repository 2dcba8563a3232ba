// Every member that reaches an element of an array, as members.txt lists it: the host entry is a dispatcher, which
// returns the array's procedure; the procedure does the work.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/arrays.h"
#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;

REALarrayStruct* const kArray = sample<REALarrayStruct*>(7);
constexpr long long kIndex = 0x7192939495969798;

void* gProcedure = nullptr;
std::vector<REALarrayStruct*> gDispatched;

/// The host entry.
void* dispatch(REALarrayStruct* array) {
  gDispatched.push_back(array);
  return gProcedure;
}

/// What to do with a member: call it where it must have no effect, and call it where it must work.
struct Calls {
  std::function<void()> callWithoutEffect;
  std::function<void()> callAndCheck;
};

struct ElementMember {
  std::string name;
  std::string entry;
  void** slot;
  Calls calls;
};

/// `valuePosition` and `indexPosition` are where the two stand among the integers, if the value is one.
template <typename T, typename Call>
void checkStore(Call call, std::size_t valuePosition, std::size_t indexPosition) {
  gProcedure = reinterpret_cast<void*>(&recordCall);
  const T value = sample<T>(3);
  call(value);
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], reinterpret_cast<std::uintptr_t>(kArray));
  const Expected expected = expectedOf(value);
  if (expected.floating) {
    EXPECT_EQ(gRecorded.integers[1], static_cast<std::uint64_t>(kIndex));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(gRecorded.floats[0]) & expected.mask, expected.bits);
  } else {
    EXPECT_EQ(gRecorded.integers[indexPosition], static_cast<std::uint64_t>(kIndex));
    EXPECT_EQ(gRecorded.integers[valuePosition] & expected.mask, expected.bits);
  }
}

template <typename T>
T returnSample(REALarrayStruct* array, long long index) {
  ++gRecorded.count;
  gRecorded.integers = {reinterpret_cast<std::uintptr_t>(array), static_cast<std::uint64_t>(index)};
  return sample<T>(3);
}

template <typename T, typename Call>
void checkGet(Call call) {
  if constexpr (std::is_integral_v<T>) {  // more bits than the type has; a Boolean is true when its low byte is not 0
    gProcedure = reinterpret_cast<void*>(&recordCall);
    for (const std::uint64_t raw : {0xA1A2A3A4A5A6A7A8ULL, 0x100ULL, 0x1'0000'0002ULL}) {
      gResult = raw;
      T out = sample<T>(5);
      call(&out);
      const bool is_bool = std::is_same_v<T, bool>;
      EXPECT_EQ(out, is_bool ? static_cast<T>((raw & 0xFF) != 0) : static_cast<T>(raw));
    }
  }
  gRecorded.count = 0;
  gProcedure = reinterpret_cast<void*>(&returnSample<T>);
  T out{};
  call(&out);
  EXPECT_EQ(out, sample<T>(3));
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], reinterpret_cast<std::uintptr_t>(kArray));
  EXPECT_EQ(gRecorded.integers[1], static_cast<std::uint64_t>(kIndex));
  call(static_cast<T*>(nullptr));
  EXPECT_EQ(gRecorded.count, 2) << "without a place for the value, the procedure is called all the same";
  gRecorded.count = 1;
}

template <typename T>
Calls insert(void (*member)(REALarrayStruct*, long long, T)) {
  const auto call = [member](T value) { member(kArray, kIndex, value); };
  return {[call] { call(sample<T>(1)); }, [call] { checkStore<T>(call, 2, 1); }};
}
template <typename T>
Calls set(void (*member)(REALarrayStruct*, long long, T)) {
  const auto call = [member](T value) { member(kArray, kIndex, value); };
  return {[call] { call(sample<T>(1)); }, [call] { checkStore<T>(call, 1, 2); }};
}
template <typename T>
Calls get(void (*member)(REALarrayStruct*, long long, T*)) {
  const auto call = [member](T* out) { member(kArray, kIndex, out); };
  const auto callWithoutEffect = [call] {
    T out = sample<T>(5);
    call(&out);
    EXPECT_EQ(out, sample<T>(5)) << "must stay as it was";
  };
  return {callWithoutEffect, [call] { checkGet<T>(call); }};
}

std::vector<ElementMember> makeMembers() {
  std::vector<ElementMember> members;
#define MEMBER(...)
#define SPECIAL(...)
#define ELEMENT(group, member, entry, operation, element) \
  members.push_back({#member, entry, &host::slots::member::address, operation<type::element>(&member)});
#include "members.inc"
#undef ELEMENT
#undef SPECIAL
#undef MEMBER
  return members;
}

/// Calls `test` with each member, in its state before its first call, and a host that offers nothing.
template <typename Test>
void forEachMember(Test test) {
  static const std::vector<ElementMember> members = makeMembers();
  ASSERT_FALSE(members.empty());
  for (const ElementMember& member : members) {
    SCOPED_TRACE(member.name);
    RecordingHost host;
    gDispatched.clear();
    gProcedure = nullptr;
    *member.slot = nullptr;
    test(member, host);
  }
}

TEST(HostCallElementMembers, LookUpAtEachCallWithoutTheDispatcher) {
  forEachMember([](const ElementMember& member, RecordingHost& host) {
    member.calls.callWithoutEffect();
    member.calls.callWithoutEffect();
    EXPECT_THAT(host.asked(), ElementsAre(member.entry, member.entry));
  });
}

TEST(HostCallElementMembers, DoNothingWithoutAProcedureForTheArray) {
  forEachMember([](const ElementMember& member, RecordingHost& host) {
    host.offer(member.entry, &dispatch);
    member.calls.callWithoutEffect();
    EXPECT_THAT(gDispatched, ElementsAre(kArray));
  });
}

TEST(HostCallElementMembers, PassTheValueAtItsWidthAndPlace) {
  forEachMember([](const ElementMember& member, RecordingHost& host) {
    host.offer(member.entry, &dispatch);
    for (int call = 0; call < 2; ++call) {
      gRecorded = {};
      member.calls.callAndCheck();
    }
  });
}

TEST(HostCallElementMembers, LookUpTheDispatcherOnceAndTheProcedureAtEachCall) {
  forEachMember([](const ElementMember& member, RecordingHost& host) {
    host.offer(member.entry, &dispatch);
    for (int call = 0; call < 3; ++call) {
      member.calls.callWithoutEffect();
    }
    EXPECT_THAT(host.asked(), ElementsAre(member.entry));
    EXPECT_THAT(gDispatched, ElementsAre(kArray, kArray, kArray));
  });
}

}  // namespace
