// Lists of profiles, as events and as arrays, through the rows.
#include <map>

#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using contract::Script;
using devhost::Value;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr const char* kProfileFound = "DisplayProfileFound( name as String, path as String )";

using ListingMethods = MethodTest;

TEST_F(ListingMethods, EventsAreInPathOrder) {
  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_THAT(events, ElementsAre(Pair("B", "/a.icc"), Pair("A", "/b.icc"), Pair("B", "/c.icc")));
}

TEST_F(ListingMethods, ArraysAreInNameOrderWithHintedTies) {
  EXPECT_THAT(plugin.call("GetInstalledProfilePathsArray").result.texts(), ElementsAre("/b.icc", "/c.icc", "/a.icc"));
}

TEST_F(ListingMethods, ArraysKeepPathOrderOfEqualNeighbours) {
  session.desktop->change([](Script& script) {
    script.installed_profiles = {contract::installed("/2.icc", "A"), contract::installed("/1.icc", "A")};
  });
  EXPECT_THAT(plugin.call("GetInstalledProfilePathsArray").result.texts(), ElementsAre("/1.icc", "/2.icc"));
}

TEST_F(ListingMethods, DisplayEventsUseInstalledNames) {
  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListDisplayProfiles", {1});
  EXPECT_THAT(events, ElementsAre(Pair("B", "/a.icc"), Pair("A", "/b.icc")));
  events.clear();
  plugin.call("ListDisplayProfiles", {3});
  EXPECT_THAT(events, ElementsAre(Pair("", "/not installed.icc")));
}

TEST_F(ListingMethods, DisplayArraysAreInOrderOfNameDefaultCurrent) {
  session.desktop->change([](Script& script) {
    script.installed_profiles = {contract::installed("/1", "N"), contract::installed("/2", "N"),
                                 contract::installed("/3", "N")};
    script.device_profiles = {contract::deviceProfile(1, "/1", true, false),
                              contract::deviceProfile(1, "/2", false, true),
                              contract::deviceProfile(1, "/3", false, false)};
  });
  EXPECT_THAT(plugin.call("GetAssociatedProfilePathsArray", {1}).result.texts(), ElementsAre("/3", "/2", "/1"));
}

TEST_F(ListingMethods, ArraysBeginWithNamelessProfiles) {
  session.desktop->change(
      [](Script& script) { script.installed_profiles.push_back(contract::installed("/z.icc", "")); });
  EXPECT_THAT(plugin.call("GetInstalledProfilePathsArray").result.texts(),
              ElementsAre("/z.icc", "/b.icc", "/c.icc", "/a.icc"));
}

TEST_F(ListingMethods, DisplayWithoutProfilesHasNoEventsAndAnEmptyArray) {
  session.desktop->change([](Script& script) { script.device_profiles.clear(); });
  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListDisplayProfiles", {1});
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(plugin.call("GetAssociatedProfilePathsArray", {1}).result.texts(), testing::IsEmpty());
}

TEST_F(ListingMethods, DisplayWithoutUuidRepeatsTheLastList) {
  EXPECT_THAT(plugin.call("GetAssociatedProfilePathsArray", {2}).result.texts(), ElementsAre("/c.icc"));
  EXPECT_THAT(plugin.call("GetAssociatedProfilePathsArray", {77}).result.texts(), ElementsAre("/c.icc"));
}

TEST_F(ListingMethods, SecondObjectReplacesTheFirst) {
  Events first;
  Events second;
  const auto first_object = listener(first);
  plugin.call("SetObject", {first_object});
  const auto second_object = listener(second);
  plugin.call("SetObject", {second_object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_THAT(first, IsEmpty());
  EXPECT_EQ(second.size(), 3U);
}

TEST_F(ListingMethods, ObjectIsNotRetained) {
  Events events;
  const auto object = listener(events);
  host.clearRecords();
  plugin.call("SetObject", {object});
  plugin.call("SetObject", {nullptr});
  EXPECT_THAT(host.entries().lookups(), IsEmpty()) << "an entry would be needed to lock an object";
}

TEST_F(ListingMethods, EventIsLoadedOnceFromANullObjectToo) {
  plugin.call("ListAllInstalledProfiles");
  ASSERT_EQ(host.methodLookups().size(), 1U);
  EXPECT_EQ(host.methodLookups()[0].owner, nullptr);
  EXPECT_EQ(host.methodLookups()[0].declaration, kProfileFound);
  host.clearRecords();
  plugin.call("SetObject", {nullptr});
  plugin.call("ListDisplayProfiles", {1});
  EXPECT_EQ(host.methodLookups().size(), 1U);
}

TEST_F(ListingMethods, EventIsLoadedWithoutProfilesToo) {
  session.desktop->change([](Script& script) { script.installed_profiles.clear(); });
  plugin.call("ListAllInstalledProfiles");
  EXPECT_EQ(host.methodLookups().size(), 1U);
}

TEST_F(ListingMethods, ObjectWithoutTheEventGetsNone) {
  const auto object = host.makeObject("Silent");
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_THAT(host.faults(), IsEmpty());
}

TEST_F(ListingMethods, StringsAreBuiltWithoutAnEventToo) {
  plugin.call("ListAllInstalledProfiles");
  EXPECT_EQ(host.unreleased().size(), 6U) << "a name and a path of each of three profiles, for nobody";
}

TEST_F(ListingMethods, StringsBelongToTheHost) {
  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  plugin.call("GetInstalledProfilePathsArray");
  EXPECT_THAT(host.unreleased(), IsEmpty());
  EXPECT_THAT(host.faults(), IsEmpty());
}

TEST_F(ListingMethods, EventMayCallTheSameListing) {
  std::vector<std::string> paths;
  int depth = 0;
  auto object = host.makeObject("Listener");
  host.addMethod(*object, kProfileFound, [&](devhost::Object&, devhost::Values& arguments) -> Value {
    paths.push_back(arguments[1].text());
    if (++depth == 1) {
      session.desktop->change([](Script& script) { script.installed_profiles.clear(); });
      plugin.call("ListAllInstalledProfiles");
      plugin.call("GetAssociatedProfilePathsArray", {2});
    }
    return {};
  });
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_THAT(paths, ElementsAre("/a.icc", "/b.icc", "/c.icc"));
}

TEST_F(ListingMethods, EventMayChangeTheObject) {
  Events later;
  auto second = listener(later);
  auto first = host.makeObject("Listener");
  int raised = 0;
  host.addMethod(*first, kProfileFound, [&](devhost::Object&, devhost::Values&) -> Value {
    ++raised;
    plugin.call("SetObject", {second});
    return {};
  });
  plugin.call("SetObject", {first});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_EQ(raised + static_cast<int>(later.size()), 3);
}

TEST_F(ListingMethods, HostWithoutObjectMethodsGetsNoEvents) {
  host.entries().remove("REALLoadObjectMethod");
  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(host.unreleased().size(), 6U);
}

}  // namespace
