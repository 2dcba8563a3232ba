// What loading the plugin does besides registering it: nothing.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <iterator>

#include "devhost/entries/host.h"
#include "frameworks/hooks/calls.h"

namespace {

std::size_t entriesOf(const char* directory) {
  const std::filesystem::directory_iterator entries(directory);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::uint64_t frameworkCalls() {
  std::uint64_t calls = 0;
  for (std::size_t call = 0; call < platform::calls::kCallCount; ++call) {
    calls += platform::calls::count(static_cast<platform::calls::Call>(call));
  }
  return calls;
}

// In a process of its own, which has not loaded the plugin before.
TEST(PluginLoad, CallsNoFrameworkAndStartsNoThread) {
  const std::uint64_t calls = frameworkCalls();
  const std::size_t threads = entriesOf("/proc/self/task");
  const std::size_t files = entriesOf("/proc/self/fd");
  devhost::Host host;
  const devhost::Plugin plugin = host.load(OSTREVIN_LIBRARY);
  EXPECT_EQ(frameworkCalls(), calls);
  EXPECT_EQ(entriesOf("/proc/self/task"), threads);
  EXPECT_EQ(entriesOf("/proc/self/fd"), files);
  plugin.call("GetIndex", {std::uint32_t{1}});
  EXPECT_GT(frameworkCalls(), calls) << "the calls are not counted";
}

TEST(PluginLoad, EndsTheProcessWithoutRegisterPluginVersion) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  devhost::Host host;
  host.entries().remove("RegisterPluginVersion");
  EXPECT_DEATH(host.load(OSTREVIN_LIBRARY), "");
}

}  // namespace
