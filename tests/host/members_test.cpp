// Every member of the host-call family, as members.txt lists it: its type, which entry it looks up and when, what it
// passes, and how it narrows the result. Element members have tests of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/host_calls.h"
#include "recording_host.h"
#include "sample_arguments.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

bool gOwnByte = false;

template <typename T>
auto argument(int position) {
  if constexpr (std::is_same_v<T, type::ownbyte>) {
    return &gOwnByte;
  } else {
    return sample<T>(position);
  }
}

// --- Members that are one call

/// How a member makes its result, a T, of the host's 64 bits.
using Narrowing = std::uint64_t (*)(std::uint64_t raw);
template <typename T, Narrowing kNarrowing>
struct Result {
  using Type = T;
  static constexpr Narrowing kNarrow = kNarrowing;
};

std::uint64_t noBits(std::uint64_t /*raw*/) { return 0; }
std::uint64_t allBits(std::uint64_t raw) { return raw; }
std::uint64_t lowBits(std::uint64_t raw) { return raw & 0xFFFFFFFF; }
std::uint64_t lowByte(std::uint64_t raw) { return raw & 0xFF; }
std::uint64_t isAnyBitSet(std::uint64_t raw) { return raw != 0 ? 1 : 0; }
std::uint64_t isLowByteSet(std::uint64_t raw) { return (raw & 0xFF) != 0 ? 1 : 0; }

/// The results by their names in members.txt.
namespace result {
using none = Result<void, &noBits>;
using string = Result<type::string, &allBits>;
using object = Result<type::object, &allBits>;
using array = Result<type::array, &allBits>;
using classref = Result<type::classref, &allBits>;
using text = Result<type::text, &allBits>;
using pointer = Result<type::pointer, &allBits>;
using cstring = Result<type::cstring, &allBits>;
using pstring = Result<type::pstring, &allBits>;
using cfstring = Result<type::cfstring, &allBits>;
using word = Result<std::intptr_t, &allBits>;
using low32 = Result<std::uint32_t, &lowBits>;
using float64 = Result<double, &allBits>;
using anybit = Result<bool, &isAnyBitSet>;
using lowbyte = Result<bool, &isLowByteSet>;
using byte = Result<std::uint8_t, &lowByte>;
}  // namespace result

/// The value, or the representation of a floating-point number.
template <typename Value>
std::uint64_t bitsOf(Value value) {
  if constexpr (std::is_pointer_v<Value>) {
    return reinterpret_cast<std::uintptr_t>(value);
  } else if constexpr (std::is_floating_point_v<Value>) {
    return std::bit_cast<std::uint64_t>(value);
  } else {
    return static_cast<std::uint64_t>(value);
  }
}

struct Member {
  std::string group;
  std::string name;
  std::string entry;
  std::uint64_t missing;
  void** slot;
  bool is_floating;
  Narrowing narrow;
  std::vector<Expected> arguments;
  std::function<std::uint64_t()> call;  ///< returns the bits of the result, 0 for none
};

template <typename Type>
using ArgumentType = decltype(argument<Type>(0));

template <typename Kind, typename... Types, typename Call>
std::function<std::uint64_t()> caller(Call call) {
  static_assert(std::is_same_v<decltype(call(argument<Types>(0)...)), typename Kind::Type>);
  return [call] {
    return [&]<int... kPositions>(std::integer_sequence<int, kPositions...>) {
      if constexpr (std::is_void_v<typename Kind::Type>) {
        call(argument<Types>(kPositions)...);
        return std::uint64_t{0};
      } else {
        return bitsOf(call(argument<Types>(kPositions)...));
      }
    }
    (std::make_integer_sequence<int, sizeof...(Types)>());
  };
}

template <typename... Types>
std::vector<Expected> expectedArguments() {
  std::vector<Expected> result;
  const auto add = [&](auto value, bool hidden) {
    result.push_back(expectedOf(value));
    result.back().hidden = hidden;
  };
  int position = 0;
  (add(argument<Types>(position++), std::is_same_v<Types, type::ownbyte>), ...);
  return result;
}

// --- The list

template <typename Kind, typename... Types>
struct Listed {
  /// `call` calls the member by its name. Its address is a function's: of these arguments, with this result.
  template <typename Call>
  static Member member(const char* group, const char* name, const char* entry, std::uint64_t missing, void** slot,
                       Call call, typename Kind::Type (*)(ArgumentType<Types>...)) {
    return {group,
            name,
            entry,
            missing,
            slot,
            std::is_floating_point_v<typename Kind::Type>,
            Kind::kNarrow,
            expectedArguments<Types...>(),
            caller<Kind, Types...>(call)};
  }
};

std::vector<Member> makeMembers() {
  std::vector<Member> members;
#define MEMBER(group, name, entry, kind, missing, ...)                       \
  members.push_back(Listed<result::kind __VA_OPT__(, ) __VA_ARGS__>::member( \
      #group, #name, entry, missing, &host::slots::name::address,            \
      [](auto... arguments) { return name(arguments...); }, &name));
#define ELEMENT(group, member, entry, operation, element)
#define SPECIAL(group, member)
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
  return members;
}

const std::vector<Member>& allMembers() {
  static const std::vector<Member> members = makeMembers();
  return members;
}

// --- The tests, a group at a time

class HostCallMembers : public ::testing::TestWithParam<const char*> {
 protected:
  /// Calls `test` with each member of the group, in its state before its first call, and a host that offers nothing.
  template <typename Test>
  static void forEach(Test test) {
    for (const Member& member : allMembers()) {
      if (member.group == GetParam()) {
        SCOPED_TRACE(member.name);
        RecordingHost host;
        *member.slot = nullptr;
        test(member, host);
      }
    }
  }
};

double resultAsDouble() { return std::bit_cast<double>(gResult); }

TEST_P(HostCallMembers, FallBackAndLookUpAtEachCallWithoutTheEntry) {
  forEach([](const Member& member, RecordingHost& host) {
    for (int call = 0; call < 3; ++call) {
      EXPECT_EQ(member.call(), member.missing);
    }
    EXPECT_THAT(host.asked(), ElementsAre(member.entry, member.entry, member.entry));
    EXPECT_EQ(*member.slot, nullptr);
  });
}

TEST_P(HostCallMembers, LookUpOnceWithTheEntry) {
  forEach([](const Member& member, RecordingHost& host) {
    host.offer(member.entry, &recordCall);
    for (int call = 1; call <= 3; ++call) {
      member.call();
      EXPECT_EQ(gRecorded.count, call);
    }
    EXPECT_THAT(host.asked(), ElementsAre(member.entry));
    host.withdraw(member.entry);
    member.call();
    EXPECT_EQ(gRecorded.count, 4) << "an entry that was found stays found";
  });
}

TEST_P(HostCallMembers, FindAnEntryThatAppearsLater) {
  forEach([](const Member& member, RecordingHost& host) {
    member.call();
    host.offer(member.entry, &recordCall);
    member.call();
    member.call();
    EXPECT_EQ(gRecorded.count, 2);
    EXPECT_THAT(host.asked(), ElementsAre(member.entry, member.entry));
  });
}

void expectRegister(std::uint64_t found, const Expected& expected) {
  if (expected.hidden) {
    EXPECT_NE(found, expected.bits);
    EXPECT_NE(found, 0U);
  } else {
    EXPECT_EQ(found & expected.mask, expected.bits);
  }
}

TEST_P(HostCallMembers, PassArgumentsInOrderAndAtTheirWidth) {
  forEach([](const Member& member, RecordingHost& host) {
    host.offer(member.entry, &recordCall);
    for (int call = 0; call < 2; ++call) {  // the call that finds the entry, and one after it
      gRecorded = {};
      member.call();
      std::size_t integers = 0;
      std::size_t floats = 0;
      for (const Expected& expected : member.arguments) {
        SCOPED_TRACE("argument " + std::to_string(integers + floats));
        expectRegister(expected.floating ? std::bit_cast<std::uint64_t>(gRecorded.floats[floats++])
                                         : gRecorded.integers[integers++],
                       expected);
      }
    }
  });
}

TEST_P(HostCallMembers, NarrowTheResultByTheirRule) {
  forEach([](const Member& member, RecordingHost& host) {
    if (member.is_floating) {
      host.offer(member.entry, &resultAsDouble);
    } else {
      host.offer(member.entry, &recordCall);
    }
    for (const std::uint64_t raw : {0ULL, 0x100ULL, 0x1'0000'0000ULL, 0x02ULL, ~0ULL}) {
      SCOPED_TRACE("the host returns " + std::to_string(raw));
      gResult = raw;
      EXPECT_EQ(member.call(), member.narrow(raw));
    }
  });
}

INSTANTIATE_TEST_SUITE_P(All, HostCallMembers,
                         ::testing::Values("Strings", "Text", "Objects", "PropertyGetters", "PropertySetters",
                                           "Variants", "Arrays", "Pictures", "Graphics", "Controls", "Databases",
                                           "Sockets", "AppleEvents", "Files", "Registration", "Runtime"),
                         [](const auto& info) { return std::string(info.param); });

// --- the family as a whole

TEST(HostCallFamily, HasEveryMemberOfEachGroupOnce) {
  const std::vector<std::pair<std::string, std::string>> members = {
#define MEMBER(group, member, ...) {#group, #member},
#define ELEMENT MEMBER
#define SPECIAL MEMBER
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
  };
  std::map<std::string, int> counts;
  std::set<std::string> names;
  for (const auto& [group, name] : members) {
    ++counts[group];
    EXPECT_TRUE(names.insert(name).second) << name;
  }
  const std::map<std::string, int> expected = {
      {"Strings", 21},         {"Text", 11},     {"Objects", 17},      {"PropertyGetters", 20},
      {"PropertySetters", 22}, {"Variants", 19}, {"Arrays", 6 + 54},   {"Pictures", 12},
      {"Graphics", 15},        {"Controls", 19}, {"Databases", 21},    {"Sockets", 12},
      {"AppleEvents", 5},      {"Files", 8},     {"Registration", 10}, {"Runtime", 4}};
  EXPECT_EQ(counts, expected);
}

/// The slots of all members; calls_test.cpp tests the special ones.
std::vector<void**> allSlots() {
  return {
#define MEMBER(group, member, ...) &host::slots::member::address,
#define ELEMENT MEMBER
#define SPECIAL(...)
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
      &host::slots::REALGetStringContents::address,
      &host::slots::REALGetStringContentsLength::address,
      &host::slots::REALStringLength::address,
      &host::slots::REALLoadFrameworkMethod::address,
  };
}

/// Seen before any test calls the host.
const bool kStartedEmpty = [] {
  bool empty = gResolver == nullptr;
  for (void** const slot : allSlots()) {
    empty = empty && *slot == nullptr;
  }
  return empty;
}();

TEST(HostCallFamily, StartsWithoutAResolverAndWithEmptySlots) { EXPECT_TRUE(kStartedEmpty); }

TEST(HostCallFamily, KeepsEachEntryInASlotOfItsOwn) {
  const std::vector<void**> slots = allSlots();
  EXPECT_EQ(std::set<void**>(slots.begin(), slots.end()).size(), slots.size());
}

TEST(HostCallFamily, LooksUpTheEntryOfEachMemberSeparately) {
  RecordingHost host;
  for (const Member& member : allMembers()) {
    host.offer(member.entry, &recordCall);
    *member.slot = nullptr;
  }
  for (const Member& member : allMembers()) {
    SCOPED_TRACE(member.name);
    host.forgetAsked();
    member.call();
    EXPECT_THAT(host.asked(), ElementsAre(member.entry));
  }
  host.forgetAsked();
  for (const Member& member : allMembers()) {
    member.call();
  }
  EXPECT_THAT(host.asked(), IsEmpty());
}

}  // namespace
