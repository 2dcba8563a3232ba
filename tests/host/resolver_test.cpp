// The resolver: how it is asked, and by whom.
#include "host/resolver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "recording_host.h"

namespace {

using ::testing::ElementsAre;

TEST(CallResolver, HandsTheNameOverAndTheAnswerBackUnchanged) {
  RecordingHost host;
  host.offer("any name, even \xFF", &recordCall);
  EXPECT_EQ(CallResolver("any name, even \xFF"), reinterpret_cast<void*>(&recordCall));
  EXPECT_EQ(CallResolver(""), nullptr);
  EXPECT_THAT(host.asked(), ElementsAre("any name, even \xFF", ""));
}

TEST(CallResolver, RemembersNothing) {
  RecordingHost host;
  host.offer("entry", &recordCall);
  CallResolver("entry");
  CallResolver("entry");
  EXPECT_THAT(host.asked(), ElementsAre("entry", "entry"));
}

TEST(CallResolver, HandsTheVeryPointerOver) {
  static const char* received = nullptr;
  const auto resolver = [](const char* name) -> void* {
    received = name;
    return nullptr;
  };
  RecordingHost host;  // puts the resolver back at the end
  gResolver = resolver;
  const char name[] = "entry";
  CallResolver(name);
  EXPECT_EQ(received, name);
}

TEST(CallResolver, BeforeTheHostHasHandedItsResolverOverEndsTheProcess) {
  const RecordingHost host;  // puts the resolver back at the end
  gResolver = nullptr;
  EXPECT_DEATH(CallResolver("entry"), "");
}

}  // namespace
