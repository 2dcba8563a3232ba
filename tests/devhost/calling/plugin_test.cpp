// Loading a plugin: the handshake, the recorded look-ups, and libraries that are not plugins.
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

TEST(LoadPlugin, ReadsItsModules) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  EXPECT_EQ(plugin.announcedVersion(), 13);
  ASSERT_EQ(plugin.modules().size(), 1U);
  EXPECT_EQ(plugin.module().name, "Sample");
  EXPECT_EQ(plugin.module().version, 13);
  EXPECT_EQ(plugin.module().methods.front().declaration.text, "Add(a As Integer, b As Integer) As Integer");
  EXPECT_EQ(plugin.call("Add", {2, 3}).result, 5);
}

TEST(LoadPlugin, RecordsLookupsInOrder) {
  Host host;
  host.load(SAMPLE_PLUGIN);
  EXPECT_THAT(host.entries().lookups(), ElementsAre("RegisterPluginVersion", "PluginRegisterModule"));
}

TEST(LoadPlugin, RecordsLookupsOfMissingEntries) {
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

TEST(LoadPlugin, ThrowsForMissingFile) {
  EXPECT_THAT(loadError("/nowhere/libNothing.so"),
              AllOf(HasSubstr("cannot load the plugin: "), HasSubstr("/nowhere/libNothing.so")));
}

TEST(LoadPlugin, ThrowsForLibraryWithoutEntry) {
  EXPECT_THAT(loadError(NO_PLUGIN), HasSubstr("is not a plugin: it does not export REALPluginMain"));
}

TEST(LoadPlugin, ThrowsForPluginWithoutModule) {
  EXPECT_THAT(loadError(SILENT_PLUGIN), HasSubstr("registers no module"));
}

TEST(FindMethod, IgnoresCase) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  EXPECT_EQ(plugin.findMethod("aDD"), plugin.findMethod("Add"));
  EXPECT_EQ(plugin.findMethod("Subtract"), nullptr);
}

TEST(Symbol, ReturnsNullForMissingSymbol) {
  Host host;
  const Plugin plugin = host.load(SAMPLE_PLUGIN);
  EXPECT_NE(plugin.symbol("REALPluginMain"), nullptr);
  EXPECT_EQ(plugin.symbol("noSuchSymbol"), nullptr);
}

TEST(Call, IsServedByTheHostThatLoadedThePlugin) {
  Host first;
  const Plugin plugin = first.load(SAMPLE_PLUGIN);
  Host second;
  plugin.call("Keep", {"kept"});
  EXPECT_EQ(first.unreleased().size(), 1U);
  EXPECT_THAT(second.unreleased(), IsEmpty());
}

TEST(Host, HasTheEntriesThatPluginsNeed) {
  Host host;
  for (const char* name : {"RegisterPluginVersion", "PluginRegisterModule", "REALBuildStringWithEncoding",
                           "StringGetCString", "REALLoadGlobalMethod", "REALUnlockString", "REALLoadObjectMethod",
                           "RuntimeArrayCreateSingleDimBoundedArray", "PluginStringArrayInsertProc"}) {
    EXPECT_NE(host.entries().find(name), nullptr) << name;
  }
}

}  // namespace
}  // namespace devhost
