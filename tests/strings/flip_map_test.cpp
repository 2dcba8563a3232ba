// Maps turned round, with the order of equal values that callers rely on.
#include <gmock/gmock.h>

#include <iterator>
#include <list>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "strings/utils.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

using Installed = std::map<std::string, std::string>;
using Association = std::tuple<std::string, bool, bool>;
using Associated = std::map<std::string, Association>;

/// The order by its rule alone, on a plain list: each element is placed with a hint that is the place after the one
/// before.
template <typename Key, typename Value>
std::vector<std::pair<Value, Key>> flippedByRule(const std::map<Key, Value>& map) {
  std::list<std::pair<Value, Key>> placed;
  auto hint = placed.begin();
  for (const auto& [key, value] : map) {
    auto place = placed.end();
    const bool fits_before_hint = hint == placed.end() || !(hint->first < value);
    const bool fits_after_previous = hint == placed.begin() || !(value < std::prev(hint)->first);
    if (fits_before_hint && fits_after_previous) {
      place = hint;
    } else if (fits_before_hint) {
      place = placed.begin();  // after the last value that is not greater
      while (place != placed.end() && !(value < place->first)) {
        ++place;
      }
    } else {
      place = placed.begin();  // before the first value that is not less
      while (place != placed.end() && place->first < value) {
        ++place;
      }
    }
    hint = std::next(placed.insert(place, {value, key}));
  }
  return {placed.begin(), placed.end()};
}

template <typename Key, typename Value>
std::vector<std::pair<Value, Key>> flipped(const std::map<Key, Value>& map) {
  const std::multimap<Value, Key> result = Utils::flip_map(map);
  return {result.begin(), result.end()};
}

TEST(FlipPair, SwapsTheMembers) {
  EXPECT_THAT(Utils::flip_pair(std::pair<std::string, std::string>("path", "name")), Pair("name", "path"));
  EXPECT_THAT(Utils::flip_pair(std::pair<std::string, int>("path", 3)), Pair(3, "path"));
}

TEST(FlipMap, KeepsTheEmptyMap) {
  EXPECT_TRUE(Utils::flip_map(Installed()).empty());
  EXPECT_TRUE(Utils::flip_map(Associated()).empty());
}

TEST(FlipMap, OrdersByValue) {
  EXPECT_THAT(Utils::flip_map(Installed{{"/1", "C"}, {"/2", "A"}, {"/3", "B"}}),
              ElementsAre(Pair("A", "/2"), Pair("B", "/3"), Pair("C", "/1")));
}

TEST(FlipMap, KeepsTheKeyOrderOfEqualNeighbours) {
  EXPECT_THAT(Utils::flip_map(Installed{{"/1.icc", "A"}, {"/2.icc", "A"}, {"/3.icc", "A"}}),
              ElementsAre(Pair("A", "/1.icc"), Pair("A", "/2.icc"), Pair("A", "/3.icc")));
}

TEST(FlipMap, PutsAnEqualValueFirstAfterALesserOne) {
  EXPECT_THAT(Utils::flip_map(Installed{{"/a.icc", "B"}, {"/b.icc", "A"}, {"/c.icc", "B"}}),
              ElementsAre(Pair("A", "/b.icc"), Pair("B", "/c.icc"), Pair("B", "/a.icc")));
}

TEST(FlipMap, PutsAnEqualValueLastAfterAGreaterOne) {
  EXPECT_THAT(Utils::flip_map(Installed{{"/a", "A"}, {"/b", "A"}, {"/c", "B"}, {"/d", "A"}}),
              ElementsAre(Pair("A", "/a"), Pair("A", "/b"), Pair("A", "/d"), Pair("B", "/c")));
}

TEST(FlipMap, PutsTheEmptyNameFirst) {
  EXPECT_THAT(Utils::flip_map(Installed{{"/a", "A"}, {"/b", ""}}), ElementsAre(Pair("", "/b"), Pair("A", "/a")));
}

TEST(FlipMap, ComparesBytes) {
  EXPECT_THAT(Utils::flip_map(Installed{{"/1", "\xC3\xA9"}, {"/2", "z"}, {"/3", "Z"}, {"/4", "Za"}}),
              ElementsAre(Pair("Z", "/3"), Pair("Za", "/4"), Pair("z", "/2"), Pair("\xC3\xA9", "/1")));
}

TEST(FlipMap, OrdersEqualNamesByTheirFlags) {
  const Associated map = {{"/1", {"N", true, false}}, {"/2", {"N", false, true}}, {"/3", {"N", false, false}}};
  EXPECT_THAT(Utils::flip_map(map),
              ElementsAre(Pair(Association("N", false, false), "/3"), Pair(Association("N", false, true), "/2"),
                          Pair(Association("N", true, false), "/1")));
}

TEST(FlipMap, FollowsTheRuleOnManyMaps) {
  std::mt19937 random(19700101);
  for (int round = 0; round < 50000; ++round) {
    Installed installed;
    Associated associated;
    const unsigned size = random() % 12;
    const unsigned names = 1 + random() % 4;
    for (unsigned i = 0; i < size; ++i) {
      const std::string path = "/" + std::to_string(random() % 40);
      const std::string name(1, static_cast<char>('A' + random() % names));
      installed[path] = name;
      associated[path] = {name, random() % 2 == 0, random() % 2 == 0};
    }
    ASSERT_EQ(flipped(installed), flippedByRule(installed));
    ASSERT_EQ(flipped(associated), flippedByRule(associated));
  }
}

}  // namespace
