// The module as a host sees it when the plugin is loaded.
#include <memory>
#include <sstream>

#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using testing::ElementsAre;
using testing::HasSubstr;

using Module = MethodTest;

TEST_F(Module, IsRegisteredOnceUnderItsNameAndVersion) {
  EXPECT_THAT(host.registration().announced_versions, ElementsAre(13));
  EXPECT_EQ(host.registration().module_records.size(), 1U);
  EXPECT_EQ(plugin.module().name, "Ostrevin");
  EXPECT_EQ(plugin.module().version, 13);
  EXPECT_EQ(plugin.module().methods.size(), 15U);
}

TEST_F(Module, IsRegisteredAfterTheVersionIsAnnouncedAndNothingElseIsLookedUp) {
  EXPECT_THAT(host.entries().lookups(), ElementsAre("RegisterPluginVersion", "PluginRegisterModule"));
}

TEST_F(Module, HasZerosInEveryFieldThatItDoesNotUse) {
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

TEST(LoadedModule, IsInitialisedDataThatNoCodeOfTheLibraryWrites) {
  // "d" is initialised data in nm's words; records that code fills in at load would be "b".
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen("nm '" OSTREVIN_LIBRARY "'", "r"), pclose);
  std::string symbols;
  std::array<char, 4096> buffer{};
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
    symbols.append(buffer.data(), size);
  }
  EXPECT_THAT(symbols, HasSubstr(" d DisplayModuleDefinition\n"));
  EXPECT_THAT(symbols, HasSubstr(" d DisplayModuleMethods\n"));
}

}  // namespace
