// The host-call family as a whole, as members.txt lists it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/host_calls.h"

namespace {

using ::testing::UnorderedElementsAre;

/// Groups and names.
using Names = std::vector<std::pair<std::string, std::string>>;

const Names kMembers = {
#define MEMBER(group, member, ...) {#group, #member},
#define ELEMENT(group, member, ...) {#group, #member},
#define SPECIAL(group, member) {#group, #member},
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
};

TEST(HostCallFamily, HasAllMembersOfEveryGroupAndNoneTwice) {
  std::map<std::string, int> counts;
  std::set<std::string> names;
  for (const auto& [group, name] : kMembers) {
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

TEST(HostCallFamily, HasNoSpecialMembersButThoseWithTestsOfTheirOwn) {
  const std::vector<std::string> special = {
#define MEMBER(...)
#define ELEMENT(...)
#define SPECIAL(group, member) #member,
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
  };
  EXPECT_THAT(special, UnorderedElementsAre("REALGetStringContents", "REALStringLength", "REALLoadFrameworkMethod",
                                            "REALLoadGlobalMethod"));
}

TEST(HostCallFamily, KeepsEveryEntryInASlotOfItsOwn) {
  const std::vector<void**> slots = {
#define MEMBER(group, member, ...) &host::slots::member::address,
#define ELEMENT(group, member, ...) &host::slots::member::address,
#define SPECIAL(group, member)
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
      &host::slots::REALGetStringContents::address,
      &host::slots::REALGetStringContentsLength::address,
      &host::slots::REALStringLength::address,
      &host::slots::REALLoadFrameworkMethod::address,
  };
  const std::set<void**> different(slots.begin(), slots.end());
  EXPECT_EQ(different.size(), slots.size());
}

TEST(HostCallFamily, StartsWithoutAResolverAndWithEmptySlots) {
  // Nothing in this program calls the host.
  EXPECT_EQ(gResolver, nullptr);
#define EMPTY(member) EXPECT_EQ(host::slots::member::address, nullptr) << #member;
#define MEMBER(group, member, ...) EMPTY(member)
#define ELEMENT(group, member, ...) EMPTY(member)
#define SPECIAL(group, member)
#include "members.inc"
#undef SPECIAL
#undef ELEMENT
#undef MEMBER
#undef EMPTY
}

}  // namespace
