// Loading: the handshake, the resolver's record, and plugins that are none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devhost/entries/host.h"

namespace devhost {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string loadError(const std::string& path) {
  Host host;
  try {
    host.load(path);
  } catch (const PluginError& error) {
    return error.what();
  }
  return "no error";
}

TEST(Loading, ReadsAnyModuleOfTheSameBinaryInterface) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  EXPECT_EQ(plugin.announcedVersion(), 13);
  ASSERT_EQ(plugin.modules().size(), 1U);
  EXPECT_EQ(plugin.module().name, "Sample");
  EXPECT_EQ(plugin.module().version, 13);
  EXPECT_EQ(plugin.module().methods.front().declaration.text, "Add(a As Integer, b As Integer) As Integer");
  EXPECT_EQ(plugin.call("Add", {2, 3}).result, 5);
}

TEST(Loading, RecordsTheResolversLookupsInOrder) {
  Host host;
  host.load(SAMPLE_PLUGIN);
  EXPECT_THAT(host.entries().lookups(), ElementsAre("RegisterPluginVersion", "PluginRegisterModule"));
}

TEST(Loading, LookupsAreRecordedWhetherFoundOrNot) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  plugin.call("Listen", {host.makeObject()});
  host.entries().remove("REALLoadObjectMethod");
  host.entries().set(
      "REALLoadObjectMethod", +[](void*, const char*) -> void* { return nullptr; });
  host.clearRecords();
  EXPECT_EQ(plugin.call("Tell", {1}).result, 0);
  EXPECT_THAT(host.entries().lookups(), ElementsAre("REALLoadObjectMethod"));
  EXPECT_EQ(host.entries().resolve("NoSuchEntry"), nullptr);
  EXPECT_THAT(host.entries().lookups(), ElementsAre("REALLoadObjectMethod", "NoSuchEntry"));
}

TEST(Loading, OfAMissingFileSaysWhich) {
  EXPECT_THAT(loadError("/nowhere/libNothing.so"),
              AllOf(HasSubstr("cannot load the plugin: "), HasSubstr("/nowhere/libNothing.so")));
}

TEST(Loading, OfALibraryWithoutTheEntrySaysSo) {
  EXPECT_THAT(loadError(NO_PLUGIN), HasSubstr("is not a plugin: it does not export REALPluginMain"));
}

TEST(Loading, OfAPluginThatRegistersNothingSaysSo) {
  EXPECT_THAT(loadError(SILENT_PLUGIN), HasSubstr("registers no module"));
}

TEST(Loading, FindsMethodsByNameWithoutCase) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  EXPECT_EQ(plugin.findMethod("aDD"), plugin.findMethod("Add"));
  EXPECT_EQ(plugin.findMethod("Subtract"), nullptr);
}

TEST(Loading, FindsExportedSymbols) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  EXPECT_NE(plugin.symbol("REALPluginMain"), nullptr);
  EXPECT_EQ(plugin.symbol("noSuchSymbol"), nullptr);
}

TEST(Host, ACallIsServedByTheHostThatLoadedThePlugin) {
  Host first;
  const Plugin plugin = first.load(SAMPLE_PLUGIN);
  Host second;
  plugin.call("Keep", {"kept"});
  EXPECT_EQ(first.unreleased().size(), 1U);
  EXPECT_THAT(second.unreleased(), IsEmpty());
}

TEST(Host, OffersTheEntriesThatEveryPluginNeeds) {
  Host host;
  for (const char* name : {"RegisterPluginVersion", "PluginRegisterModule", "REALBuildStringWithEncoding",
                           "StringGetCString", "REALLoadGlobalMethod", "REALUnlockString", "REALLoadObjectMethod",
                           "RuntimeArrayCreateSingleDimBoundedArray", "PluginStringArrayInsertProc"}) {
    EXPECT_NE(host.entries().find(name), nullptr) << name;
  }
}

}  // namespace
}  // namespace devhost
