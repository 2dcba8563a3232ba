// The module as a host sees it when the plugin is loaded. Needs no display.
#include <gmock/gmock.h>

#include <set>

#include "devhost/entries/host.h"
#include "support/fresh_plugin.h"

namespace {

using testing::ElementsAre;

class Module : public testing::Test {
 protected:
  Module() : plugin(support::loadFreshPlugin(host)) {}

  devhost::Host host;
  devhost::Plugin plugin;
};

TEST_F(Module, IsRegisteredOnceUnderItsNameAndVersion) {
  EXPECT_THAT(host.registration().announced_versions, ElementsAre(13));
  EXPECT_EQ(host.registration().module_records.size(), 1U);
  EXPECT_EQ(plugin.module().name, "Ostrevin");
  EXPECT_EQ(plugin.module().version, 13);
  EXPECT_EQ(plugin.module().methods.size(), 15U);
}

TEST_F(Module, IsRegisteredAfterTheVersion) {
  EXPECT_THAT(host.entries().lookups(), ElementsAre("RegisterPluginVersion", "PluginRegisterModule"));
}

TEST_F(Module, HasZerosInUnusedFields) {
  EXPECT_THAT(plugin.module().further, testing::Each(0U));
  for (const devhost::Method& method : plugin.module().methods) {
    EXPECT_NE(method.function, nullptr);
    EXPECT_EQ(method.second_function, nullptr);
    EXPECT_THAT(method.further, testing::Each(0U));
  }
}

TEST_F(Module, BindsADistinctFunctionToEachRow) {
  std::set<const void*> functions;
  for (const devhost::Method& method : plugin.module().methods) {
    functions.insert(method.function);
  }
  EXPECT_EQ(functions.size(), 15U);
}

}  // namespace
