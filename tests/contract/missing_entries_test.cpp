// Hosts that lack an entry, each in turn: the methods answer what they can, and nothing stops.
#include <optional>

#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using testing::IsEmpty;

class MissingEntry : public MethodTest, public testing::WithParamInterface<const char*> {};

TEST_P(MissingEntry, DisturbsNoMethod) {
  host.entries().remove(GetParam());
  const std::string missing = GetParam();
  const bool builds_strings = missing != "REALBuildStringWithEncoding";
  const bool reads_strings = missing != "StringGetCString";

  EXPECT_EQ(plugin.call("GetIndex", {2}).result.unsignedNumber(), 1U);
  EXPECT_EQ(plugin.call("GetScale", {1}).result.real(), 2.0);
  EXPECT_EQ(plugin.call("GetRect", {1})["right"].integer(), 1440);
  EXPECT_EQ(plugin.call("GetName", {1})["name"].text(), builds_strings ? "Notebook" : "");
  EXPECT_EQ(plugin.call("GetProfilePath", {1})["path"].text(), builds_strings ? "/a.icc" : "");
  EXPECT_EQ(plugin.call("SetProfile", {1, "/b.icc"}).result.boolean(), reads_strings);

  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_EQ(events.size(), missing == "REALLoadObjectMethod" ? 0U : 3U);

  const auto array = plugin.call("GetInstalledProfilePathsArray").result;
  if (missing == "RuntimeArrayCreateSingleDimBoundedArray") {
    EXPECT_TRUE(array.isNil());
  } else {
    EXPECT_EQ(array.array()->elements().size(), missing == "PluginStringArrayInsertProc" ? 0U : 3U);
  }
  EXPECT_FALSE(plugin.call("ICCTagExists", {"/nowhere.icc", "desc"}).result.boolean());
  const auto document = plugin.call("QV02Read", {"/nowhere.icc", "before"});
  EXPECT_EQ(document.result.integer(), 466);
  EXPECT_EQ(document["xmlString"].text(), "");
}

INSTANTIATE_TEST_SUITE_P(InTurn, MissingEntry,
                         testing::Values("REALBuildStringWithEncoding", "StringGetCString", "REALLoadGlobalMethod",
                                         "REALUnlockString", "REALLoadObjectMethod",
                                         "RuntimeArrayCreateSingleDimBoundedArray", "PluginStringArrayInsertProc"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
