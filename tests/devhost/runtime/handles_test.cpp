// Reference counts of host values, and what is noted when a plugin gets them wrong.
#include "devhost/runtime/handles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devhost/runtime/host.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class HandlesTest : public ::testing::Test {
 protected:
  void unlock(void* handle) { host_.handles().release(handle, Counted::Kind::kString, "test"); }
  std::size_t strings() { return host_.handles().count(Counted::Kind::kString); }

  Host host_;
};

TEST_F(HandlesTest, AStringLivesAsLongAsItsLastReference) {
  Ref<String> first = host_.makeString("text");
  Ref<String> second = first;
  EXPECT_EQ(first->references(), 2U);
  first = nullptr;
  EXPECT_EQ(second->references(), 1U);
  EXPECT_EQ(strings(), 1U);
  second = nullptr;
  EXPECT_EQ(strings(), 0U);
}

TEST_F(HandlesTest, AReferenceOfThePluginKeepsAStringAlive) {
  Ref<String> string = host_.makeString("text");
  string->addPluginReference();
  void* const handle = string.handle();
  string = nullptr;
  EXPECT_EQ(strings(), 1U);
  EXPECT_THAT(host_.unreleased(), ElementsAre("string \"text\" (4 bytes)"));
  unlock(handle);
  EXPECT_EQ(strings(), 0U);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(HandlesTest, SeveralReferencesAreCountedInTheReport) {
  const Ref<String> string = host_.makeString("a\nb");
  string->addPluginReference();
  string->addPluginReference();
  EXPECT_THAT(host_.unreleased(), ElementsAre("string \"a\\nb\" (3 bytes), 2 references"));
}

TEST_F(HandlesTest, OneReleaseTooManyIsNotedAndLeavesTheStringAlone) {
  const Ref<String> string = host_.makeString("text");
  unlock(string.handle());
  EXPECT_EQ(string->bytes(), "text");
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("releases a reference that it does not hold")));
}

TEST_F(HandlesTest, AStaleHandleIsNotedAndNotFollowed) {
  Ref<String> string = host_.makeString("text");
  void* const handle = string.handle();
  string = nullptr;
  unlock(handle);
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("is no living string")));
}

TEST_F(HandlesTest, AHandleOfAnotherKindIsNoted) {
  const Ref<Object> object = host_.makeObject();
  unlock(object.handle());
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("is no living string")));
}

TEST_F(HandlesTest, ANullHandleIsNoFault) {
  unlock(nullptr);
  EXPECT_EQ(host_.handles().find<String>(nullptr, "test"), nullptr);
  EXPECT_FALSE(host_.handles().take<String>(nullptr, "test"));
  EXPECT_THAT(host_.faults(), IsEmpty());
}

TEST_F(HandlesTest, WhatThePluginHandsOverBelongsToTheHost) {
  Ref<String> string = host_.makeString("text");
  string->addPluginReference();
  const Ref<String> taken = host_.handles().take<String>(string.handle(), "test");
  EXPECT_EQ(taken->references(), 2U);
  EXPECT_EQ(taken->pluginReferences(), 0U);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
}

TEST_F(HandlesTest, HandingOverWhatIsNotHeldIsNoted) {
  const Ref<String> string = host_.makeString("text");
  EXPECT_TRUE(host_.handles().take<String>(string.handle(), "test"));
  EXPECT_THAT(host_.faults(), ElementsAre(HasSubstr("hands over a reference that it does not hold")));
}

TEST_F(HandlesTest, AnArrayKeepsItsElements) {
  Ref<Array> array = host_.makeArray(Type::kString, {"a", "b"});
  EXPECT_EQ(strings(), 2U);
  array = nullptr;
  EXPECT_EQ(strings(), 0U);
}

TEST(Handles, ValuesMayOutliveTheirHost) {
  Ref<String> string;
  {
    Host host;
    string = host.makeString("text");
  }
  EXPECT_EQ(string->bytes(), "text");
}

TEST(Handles, WhatAPluginStillHoldsGoesWithTheHost) {
  auto host = std::make_unique<Host>();
  Ref<String> string = host->makeString("text");
  string->addPluginReference();
  host.reset();
  EXPECT_EQ(string->references(), 1U);
}

TEST(Handles, ReportsStringsApartFromOtherValues) {
  Host host;
  const Ref<String> string = host.makeString("text");
  const Ref<Array> array = host.makeArray(Type::kString, {"a"});
  string->addPluginReference();
  array->addPluginReference();
  EXPECT_THAT(host.unreleasedStrings(), ElementsAre("string \"text\" (4 bytes)"));
  EXPECT_THAT(host.unreleased(), ElementsAre("array of String (1 elements)", "string \"text\" (4 bytes)"));
}

}  // namespace
}  // namespace devhost
