// The pools that a host keeps around calls.
#include <gtest/gtest.h>

#include "devhost/entries/host.h"

namespace devhost {
namespace {

TEST(AutoreleasePools, SurroundLoadingAndEveryCall) {
  Host host;
  const Plugin plugin = host.load(POOL_PLUGIN);
  const auto events = reinterpret_cast<const char* (*)()>(plugin.symbol("poolEvents"));
  ASSERT_NE(events, nullptr);
  EXPECT_STREQ(events(), "(m)");
  plugin.call("Work");
  plugin.call("Work");
  EXPECT_STREQ(events(), "(m)(w)(w)");
}

}  // namespace
}  // namespace devhost
