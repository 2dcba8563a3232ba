// Methods of host objects, called by a plugin.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "devhost/entries/host.h"

namespace devhost {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kHeard = "Heard( text as String, number as Integer ) as Integer";

class ObjectMethod : public ::testing::Test {
 protected:
  ~ObjectMethod() override { plugin_.call("Listen", {nullptr}); }

  Host host_;
  Plugin plugin_ = host_.load(SAMPLE_PLUGIN);
  Ref<Object> listener_ = host_.makeObject("Listener");
};

TEST_F(ObjectMethod, GetsArgumentsAndReturnsResult) {
  std::vector<std::string> heard;
  host_.addMethod(*listener_, kHeard, [&](Object& self, Values& arguments) -> Value {
    EXPECT_EQ(&self, listener_.get());
    heard.push_back(arguments[0].text() + std::to_string(arguments[1].integer()));
    return -2;
  });
  plugin_.call("Listen", {listener_});
  EXPECT_EQ(plugin_.call("Tell", {3}).result, -6);
  EXPECT_THAT(heard, ElementsAre("tick0", "tick1", "tick2"));
}

TEST_F(ObjectMethod, TakesOverPassedStrings) {
  host_.addMethod(*listener_, kHeard, [](Object&, Values&) -> Value { return 0; });
  plugin_.call("Listen", {listener_});
  plugin_.call("Tell", {5});
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_EQ(host_.handles().count(), 1U) << "the listener";
}

TEST_F(ObjectMethod, IsFoundByItsTypes) {
  host_.addMethod(*listener_, "Heard(text As String) As Integer", [](Object&, Values&) -> Value { return 1; });
  plugin_.call("Listen", {listener_});
  EXPECT_EQ(plugin_.call("Tell", {1}).result, 0);
  host_.addMethod(*listener_, "HEARD(a As String, b As Integer) As Integer",
                  [](Object&, Values&) -> Value { return 1; });
  EXPECT_EQ(plugin_.call("Tell", {1}).result, 1);
}

TEST_F(ObjectMethod, IsNotFoundForNil) {
  plugin_.call("Listen", {nullptr});
  EXPECT_EQ(plugin_.call("Tell", {1}).result, 0);
  ASSERT_EQ(host_.methodLookups().size(), 1U);
  EXPECT_EQ(host_.methodLookups()[0].owner, nullptr);
  EXPECT_EQ(host_.methodLookups()[0].declaration, kHeard);
}

TEST_F(ObjectMethod, IsNotFoundForStaleHandle) {
  host_.addMethod(*listener_, kHeard, [](Object&, Values&) -> Value { return 1; });
  plugin_.call("Listen", {listener_});
  listener_ = nullptr;
  EXPECT_EQ(plugin_.call("Tell", {1}).result, 0);
  EXPECT_EQ(host_.faults().size(), 1U);
}

TEST_F(ObjectMethod, MayCallThePlugin) {
  host_.addMethod(*listener_, kHeard, [&](Object&, Values& arguments) -> Value {
    return plugin_.call("Add", {arguments[1], 10}).result;
  });
  plugin_.call("Listen", {listener_});
  EXPECT_EQ(plugin_.call("Tell", {2}).result, 21);
}

TEST_F(ObjectMethod, PassesItsExceptionToTheCallerOfThePlugin) {
  host_.addMethod(*listener_, kHeard, [](Object&, Values&) -> Value { throw std::runtime_error("stop"); });
  plugin_.call("Listen", {listener_});
  EXPECT_THROW(plugin_.call("Tell", {2}), std::runtime_error);
  EXPECT_THAT(host_.unreleased(), IsEmpty());
  EXPECT_EQ(plugin_.call("Add", {1, 1}).result, 2);
}

TEST_F(ObjectMethod, ThrowsForResultOfWrongType) {
  host_.addMethod(*listener_, kHeard, [](Object&, Values&) -> Value { return "no number"; });
  plugin_.call("Listen", {listener_});
  EXPECT_THROW(plugin_.call("Tell", {1}), ValueError);
}

TEST_F(ObjectMethod, StoresThroughByReferenceParameters) {
  host_.addMethod(*listener_, "Swap(byref text As String, byref number As Integer)",
                  [](Object&, Values& arguments) -> Value {
                    arguments[0] = "new";
                    arguments[1] = arguments[1].integer() + 1;
                    return {};
                  });
  auto* const swap = reinterpret_cast<void (*)(void*, void**, std::int32_t*)>(
      listener_->method(parseDeclaration("Swap(byref text As String, byref number As Integer)").signature()));
  const Ref<String> old = host_.makeString("old");
  void* slot = host_.handles().give(old);
  std::int32_t numbers[2] = {41, -1};
  swap(listener_->handle(), &slot, numbers);
  EXPECT_EQ(numbers[0], 42);
  EXPECT_EQ(numbers[1], -1);
  EXPECT_EQ(old.use_count(), 1);
  EXPECT_EQ(host_.handles().take<String>(slot, "test")->bytes(), "new");
}

}  // namespace
}  // namespace devhost
