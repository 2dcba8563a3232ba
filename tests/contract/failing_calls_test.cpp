// Every framework call failing, each in turn: the methods answer what is documented, and are right again afterwards.
#include <functional>
#include <sstream>

#include "tests/contract/fixture.h"

namespace {

using contract::MethodTest;
using devhost::Value;
using devhost::Values;
using platform::calls::Answer;
using platform::calls::Call;
using testing::AnyOf;

void fail(Call call) {
  platform::calls::setHook(call, [](std::uint64_t) { return Answer{.fail = true}; });
}

std::string callName(Call call) { return platform::calls::name(call); }

/// The calls whose failure nothing else here names may make a method answer its failure value; none may do more.
class FailingCall : public MethodTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(FailingCall, LeavesEveryMethodItsAnswerOrItsFailureValue) {
  fail(static_cast<Call>(GetParam()));
  EXPECT_THAT(plugin.call("GetIndex", {2}).result.unsignedNumber(), AnyOf(1U, 4099018739U));
  EXPECT_THAT(plugin.call("GetScale", {1}).result.real(), AnyOf(2.0, 0.0));
  EXPECT_THAT(plugin.call("GetRect", {1})["right"].integer(), AnyOf(1440, 0));
  EXPECT_THAT(plugin.call("GetCGRect", {1})["width"].real(), AnyOf(1440.0, 0.0));
  EXPECT_THAT(plugin.call("DisplayIDForWindow", {10, -10, 10, 20}).result.unsignedNumber(), AnyOf(1U, 0U));
  EXPECT_THAT(plugin.call("GetName", {1})["name"].text(), AnyOf("Notebook", "UNKNOWN"));
  EXPECT_THAT(plugin.call("GetProfilePath", {1})["path"].text(), AnyOf("/a.icc", ""));
  plugin.call("SetProfile", {1, "/a.icc"});
  Events events;
  const auto object = listener(events);
  plugin.call("SetObject", {object});
  plugin.call("ListAllInstalledProfiles");
  EXPECT_LE(events.size(), 3U);
  plugin.call("ListDisplayProfiles", {1});
  EXPECT_LE(plugin.call("GetInstalledProfilePathsArray").result.array()->elements().size(), 3U);
  EXPECT_LE(plugin.call("GetAssociatedProfilePathsArray", {1}).result.array()->elements().size(), 2U);
  EXPECT_FALSE(plugin.call("ICCTagExists", {"/nowhere.icc", "desc"}).result.boolean());
  EXPECT_EQ(plugin.call("QV02Read", {"/nowhere.icc", "before"}).result.integer(), 466);

  platform::calls::removeAllHooks();
  EXPECT_EQ(plugin.call("GetIndex", {2}).result.unsignedNumber(), 1U);
  EXPECT_EQ(plugin.call("GetRect", {1})["right"].integer(), 1440);
  EXPECT_EQ(plugin.call("GetName", {3})["name"].text(), "Third");
  EXPECT_TRUE(plugin.call("SetProfile", {1, "/b.icc"}).result.boolean());
  EXPECT_EQ(plugin.call("GetProfilePath", {1})["path"].text(), "/b.icc");
  EXPECT_EQ(plugin.call("GetInstalledProfilePathsArray").result.array()->elements().size(), 3U);
  EXPECT_EQ(plugin.call("GetAssociatedProfilePathsArray", {2}).result.array()->texts(),
            std::vector<std::string>{"/c.icc"});
  EXPECT_THAT(host.faults(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(InTurn, FailingCall, testing::Range(std::size_t{0}, platform::calls::kCallCount),
                         [](const auto& info) { return callName(static_cast<Call>(info.param)); });

/// What a method answers while a call fails.
struct StatedAnswer {
  Call call;
  const char* method;
  Values arguments;
  const char* by_reference;  ///< the parameter looked at, or null for the result
  Value answer;
};

class WhileACallFails : public MethodTest, public testing::WithParamInterface<StatedAnswer> {};

TEST_P(WhileACallFails, TheMethodAnswersItsFailureValue) {
  const StatedAnswer& stated = GetParam();
  fail(stated.call);
  const auto answer = plugin.call(stated.method, stated.arguments);
  EXPECT_EQ(stated.by_reference == nullptr ? answer.result : answer[stated.by_reference], stated.answer);
}

INSTANTIATE_TEST_SUITE_P(
    Stated, WhileACallFails,
    testing::Values(StatedAnswer{Call::CGGetActiveDisplayList, "GetIndex", {1}, nullptr, 4099018739U},
                    StatedAnswer{Call::CGDisplayBounds, "GetRect", {1}, "right", 0},
                    StatedAnswer{Call::CGDisplayBounds, "GetCGRect", {1}, "width", 0.0},
                    StatedAnswer{Call::CGGetDisplaysWithRect, "DisplayIDForWindow", {10, -10, 10, 20}, nullptr, 0U},
                    StatedAnswer{Call::NSScreen_screens, "GetScale", {2}, nullptr, 2.0},
                    StatedAnswer{Call::NSScreen_mainScreen, "GetScale", {77}, nullptr, 0.0},
                    StatedAnswer{Call::NSScreen_backingScaleFactor, "GetScale", {1}, nullptr, 0.0},
                    StatedAnswer{Call::CGDisplayCreateUUIDFromDisplayID, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::CGDisplayCreateUUIDFromDisplayID, "GetProfilePath", {1}, "path", ""},
                    StatedAnswer{Call::CGDisplayCreateUUIDFromDisplayID, "SetProfile", {1, "/b"}, nullptr, false},
                    StatedAnswer{Call::CFUUIDCreateString, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::CFUUIDCreateString, "GetProfilePath", {1}, "path", ""},
                    StatedAnswer{Call::IOServiceMatching, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::IOServiceGetMatchingServices, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::IOIteratorNext, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::IODisplayCreateInfoDictionary, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::CFNumberGetValue, "GetName", {1}, "name", "UNKNOWN"},
                    StatedAnswer{Call::dispatch_queue_create, "GetProfilePath", {1}, "path", ""},
                    StatedAnswer{Call::dispatch_async, "GetProfilePath", {1}, "path", ""},
                    StatedAnswer{Call::ColorSyncIterateDeviceProfiles, "GetProfilePath", {1}, "path", ""},
                    StatedAnswer{Call::ColorSyncDeviceSetCustomProfiles, "SetProfile", {1, "/b"}, nullptr, false},
                    StatedAnswer{Call::CFDictionaryCreate, "SetProfile", {1, "/b"}, nullptr, false}),
    [](const auto& info) { return callName(info.param.call) + "_" + info.param.method; });

TEST_F(MethodTest, ListsAreEmptyWhileTheInstalledProfilesCannotBeWalked) {
  fail(Call::ColorSyncIterateInstalledProfiles);
  EXPECT_EQ(plugin.call("GetInstalledProfilePathsArray").result.array()->upperBound(), -1);
}

}  // namespace
