// The library's entry, linked instead of loaded. tests/contract calls it as a host does.
#include "plugin/entry.h"

#include <gmock/gmock.h>

#include <cstdint>

#include "host/recording_host.h"
#include "host/runtime.h"

namespace {

using testing::ElementsAre;

std::uint64_t addressOf(const void* object) { return reinterpret_cast<std::uintptr_t>(object); }

TEST(PluginEntry, RegistersTheModuleOnce) {
  RecordingHost host;
  host::slots::REALRegisterModule::address = nullptr;
  host.offer("PluginRegisterModule", &recordCall);
  PluginEntry();
  EXPECT_THAT(host.asked(), ElementsAre("PluginRegisterModule"));
  EXPECT_EQ(gRecorded.count, 1);
  EXPECT_EQ(gRecorded.integers[0], addressOf(&DisplayModuleDefinition));
  EXPECT_EQ(DisplayModuleDefinition.methods, DisplayModuleMethods);
}

TEST(REALPluginMain, StoresTheResolverItWasGiven) {
  const RecordingHost host;  // restores the resolver at the end
  const REALresolver resolver = [](const char*) { return reinterpret_cast<void*>(&recordCall); };
  host::slots::REALRegisterModule::address = nullptr;
  REALPluginMain(resolver);
  EXPECT_EQ(gResolver, resolver);
  EXPECT_EQ(gRecorded.count, 2);
}

TEST(SetObject, StoresTheObjectAsItIs) {
  auto* const set = reinterpret_cast<void (*)(REALobjectStruct*)>(DisplayModuleMethods[0].function);
  EXPECT_EQ(gHostObj, nullptr);
  int storage = 0;
  auto* const object = reinterpret_cast<REALobjectStruct*>(&storage);
  set(object);
  EXPECT_EQ(gHostObj, object);
  set(nullptr);
  EXPECT_EQ(gHostObj, nullptr);
}

}  // namespace
