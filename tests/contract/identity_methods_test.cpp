// Name and profile of a display, through the rows.
#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using contract::Script;
using devhost::Value;
using testing::IsEmpty;

using IdentityMethods = MethodTest;

TEST_F(IdentityMethods, GetNameStoresTheProductName) {
  const auto result = plugin.call("GetName", {2});
  EXPECT_EQ(result["name"].text(), "Größe 27″");
}

TEST_F(IdentityMethods, GetNameStoresUNKNOWNForUnknownDisplay) {
  EXPECT_EQ(plugin.call("GetName", {0})["name"].text(), "UNKNOWN");
  EXPECT_EQ(plugin.call("GetName", {77})["name"].text(), "UNKNOWN");
}

TEST_F(IdentityMethods, GetNameReleasesTheOldString) {
  const auto first = plugin.call("GetName", {1, "before"});
  EXPECT_EQ(first["name"].text(), "Notebook");
  EXPECT_EQ(plugin.call("GetName", {1, first["name"]})["name"].text(), "Notebook");
  EXPECT_THAT(host.unreleased(), IsEmpty());
  EXPECT_THAT(host.faults(), IsEmpty());
}

TEST_F(IdentityMethods, GetNameAcceptsANullArgument) {
  EXPECT_EQ(plugin.call("GetName", {1, nullptr})["name"].text(), "Notebook");
  EXPECT_THAT(host.faults(), IsEmpty());
}

TEST_F(IdentityMethods, GetNameIsCachedPerDisplay) {
  EXPECT_EQ(plugin.call("GetName", {1})["name"].text(), "Notebook");
  session.desktop->change([](Script& script) { script.arrangement.services.clear(); });
  EXPECT_EQ(plugin.call("GetName", {1})["name"].text(), "Notebook");
  EXPECT_EQ(plugin.call("GetName", {3})["name"].text(), "UNKNOWN");
}

TEST_F(IdentityMethods, GetProfilePathStoresAPath) {
  EXPECT_EQ(plugin.call("GetProfilePath", {1})["path"].text(), "/a.icc");
  EXPECT_EQ(plugin.call("GetProfilePath", {3})["path"].text(), "/not installed.icc");
  EXPECT_THAT(host.unreleased(), IsEmpty());
}

TEST_F(IdentityMethods, GetProfilePathStoresAnEmptyStringForUnknownDisplay) {
  EXPECT_EQ(plugin.call("GetProfilePath", {77, "before"})["path"].text(), "");
  EXPECT_THAT(host.unreleased(), IsEmpty());
}

TEST_F(IdentityMethods, SetProfileChangesGetProfilePath) {
  EXPECT_TRUE(plugin.call("SetProfile", {1, "/ein Ordner/größer #1?.icc"}).result.boolean());
  EXPECT_EQ(plugin.call("GetProfilePath", {1})["path"].text(), "/ein Ordner/größer #1?.icc");
  EXPECT_EQ(plugin.call("GetProfilePath", {2})["path"].text(), "/c.icc");
}

TEST_F(IdentityMethods, SetProfileReturnsFalseWhenColorSyncRefuses) {
  session.desktop->change([](Script& script) { script.accepts_profiles = false; });
  EXPECT_FALSE(plugin.call("SetProfile", {1, "/x.icc"}).result.boolean());
}

TEST_F(IdentityMethods, SetProfileReturnsFalseForInvalidArguments) {
  EXPECT_FALSE(plugin.call("SetProfile", {77, "/x.icc"}).result.boolean());
  EXPECT_FALSE(plugin.call("SetProfile", {0, "/x.icc"}).result.boolean());
  EXPECT_FALSE(plugin.call("SetProfile", {1, nullptr}).result.boolean());
  EXPECT_FALSE(plugin.call("SetProfile", {1, "/\xFF.icc"}).result.boolean());
  EXPECT_EQ(plugin.call("GetProfilePath", {1})["path"].text(), "/a.icc");
}

}  // namespace
