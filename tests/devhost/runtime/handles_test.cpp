// Reference counts of host objects, and what is recorded when a plugin gets them wrong.
#include "devhost/runtime/handles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "devhost/runtime/runtime.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class HandleCounts : public ::testing::Test {
 protected:
  void* give(const char* text) { return runtime_.handles().give(runtime_.makeString(text)); }
  void release(void* handle) { runtime_.handles().release<String>(handle, "test"); }

  Runtime runtime_;
};

TEST_F(HandleCounts, StringLivesUntilItsLastHostReference) {
  Ref<String> first = runtime_.makeString("text");
  Ref<String> second = first;
  first = nullptr;
  EXPECT_EQ(runtime_.handles().count(), 1U);
  second = nullptr;
  EXPECT_EQ(runtime_.handles().count(), 0U);
}

TEST_F(HandleCounts, PluginReferenceKeepsStringAliveUntilReleased) {
  void* const handle = give("text");
  EXPECT_EQ(runtime_.handles().count(), 1U);
  EXPECT_THAT(runtime_.unreleased(), ElementsAre("string \"text\" (4 bytes)"));
  release(handle);
  EXPECT_EQ(runtime_.handles().count(), 0U);
  EXPECT_THAT(runtime_.unreleased(), IsEmpty());
  EXPECT_THAT(runtime_.faults(), IsEmpty());
}

TEST_F(HandleCounts, UnreleasedCountsReferences) {
  const Ref<String> string = runtime_.makeString("a\nb");
  runtime_.handles().give(string);
  runtime_.handles().give(string);
  EXPECT_THAT(runtime_.unreleased(), ElementsAre("string \"a\\nb\" (3 bytes), 2 references"));
}

TEST_F(HandleCounts, UnreleasedDescribesEveryKind) {
  runtime_.handles().give(runtime_.makeString("text"));
  runtime_.handles().give(runtime_.makeObject("Window"));
  runtime_.handles().give(runtime_.makeArray({runtime_.makeString("a")}));
  EXPECT_THAT(runtime_.unreleased(),
              ElementsAre("array of String (1 elements)", "object of class Window", "string \"text\" (4 bytes)"));
}

TEST_F(HandleCounts, ReleaseWithoutReferenceRecordsFaultAndLeavesStringAlone) {
  const Ref<String> string = runtime_.makeString("text");
  release(string->handle());
  EXPECT_EQ(string->bytes(), "text");
  EXPECT_THAT(runtime_.faults(), ElementsAre(HasSubstr("releases a reference that it does not hold")));
}

TEST_F(HandleCounts, StaleHandleRecordsFault) {
  void* const handle = give("text");
  release(handle);
  release(handle);
  EXPECT_THAT(runtime_.faults(), ElementsAre(HasSubstr("is not a living string")));
}

TEST_F(HandleCounts, HandleOfAnotherKindRecordsFault) {
  const Ref<Object> object = runtime_.makeObject();
  release(object->handle());
  EXPECT_THAT(runtime_.faults(), ElementsAre(HasSubstr("is not a living string")));
}

TEST_F(HandleCounts, NullHandleIsNotAFault) {
  release(nullptr);
  EXPECT_EQ(runtime_.handles().find<String>(nullptr, "test"), nullptr);
  EXPECT_EQ(runtime_.handles().take<String>(nullptr, "test"), nullptr);
  EXPECT_THAT(runtime_.faults(), IsEmpty());
}

TEST_F(HandleCounts, TakeMovesThePluginsReferenceToTheHost) {
  const Ref<String> taken = runtime_.handles().take<String>(give("text"), "test");
  EXPECT_EQ(taken->bytes(), "text");
  EXPECT_THAT(runtime_.unreleased(), IsEmpty());
  EXPECT_THAT(runtime_.faults(), IsEmpty());
}

TEST_F(HandleCounts, TakeWithoutReferenceRecordsFaultAndReturnsString) {
  const Ref<String> string = runtime_.makeString("text");
  EXPECT_EQ(runtime_.handles().take<String>(string->handle(), "test"), string);
  EXPECT_THAT(runtime_.faults(), ElementsAre(HasSubstr("hands over a reference that it does not hold")));
}

TEST_F(HandleCounts, ArrayKeepsItsElementsAlive) {
  Ref<Array> array = runtime_.makeArray({runtime_.makeString("a"), runtime_.makeString("b")});
  EXPECT_EQ(runtime_.handles().count(), 3U);
  array = nullptr;
  EXPECT_EQ(runtime_.handles().count(), 0U);
}

TEST(Runtime, ItsStringsMayOutliveIt) {
  Ref<String> string;
  {
    Runtime runtime;
    string = runtime.makeString("text");
  }
  EXPECT_EQ(string->bytes(), "text");
}

TEST(Runtime, DropsPluginReferencesWhenItGoes) {
  auto runtime = std::make_unique<Runtime>();
  const Ref<String> string = runtime->makeString("text");
  runtime->handles().give(string);
  EXPECT_EQ(string.use_count(), 2);
  runtime.reset();
  EXPECT_EQ(string.use_count(), 1);
}

TEST(Runtime, LastOneMadeIsCurrentUntilItGoes) {
  Runtime first;
  {
    const Runtime second;
    EXPECT_EQ(&Runtime::current(), &second);
  }
  EXPECT_EQ(&Runtime::current(), &first);
}

}  // namespace
}  // namespace devhost
