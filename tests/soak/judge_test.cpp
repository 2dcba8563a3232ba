// The soak's judge rejects wrong results, and accepts more than one only during a change.
#include "soak/judge.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace soak {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint32_t kFirst = 70;
constexpr std::uint32_t kSecond = 71;
constexpr std::uint32_t kMonitor = 0x80000123;
constexpr std::uint32_t kUnknown = 9;
constexpr const char* kNotFound = "4099018739";

class SoakJudge : public testing::Test {
 protected:
  SoakJudge() {
    world.outputs = {kFirst, kSecond};
    world.monitors = {kMonitor};
  }

  /// Judges a call of a millisecond that begins at `time`.
  bool isRightAt(Time time, Method method, std::array<std::int64_t, 4> arguments, const std::string& result,
                 Clock::duration took = milliseconds(1)) {
    return judge.judge({method, arguments, result, time, time + took});
  }
  /// The same long after every change.
  bool isRight(Method method, std::array<std::int64_t, 4> arguments, const std::string& result,
               Clock::duration took = milliseconds(1)) {
    return isRightAt(now_ += seconds(10), method, arguments, result, took);
  }

  support::TemporaryFolder folder;
  World world{
      folder.path(), 100, {{{kFirst, 0, 0, 1024, 768}, {kSecond, 1024, 0, 800, 600}, {kMonitor, 0, 768, 640, 480}}}};
  Judge judge{world};

 private:
  Time now_ = Clock::now() + std::chrono::hours(1);
};

TEST_F(SoakJudge, RejectsWrongGeometry) {
  EXPECT_TRUE(isRight(Method::kGetRect, {kSecond}, "1024 0 1824 600"));
  EXPECT_FALSE(isRight(Method::kGetRect, {kSecond}, "1024 0 1824 601"));
  EXPECT_TRUE(isRight(Method::kGetCGRect, {kSecond}, "1024 0 800 600"));
  EXPECT_FALSE(isRight(Method::kGetCGRect, {kSecond}, "0 0 0 0"));
  EXPECT_TRUE(isRight(Method::kGetCGRect, {kUnknown}, "0 0 0 0"));
  EXPECT_TRUE(isRight(Method::kGetIndex, {kMonitor}, "2"));
  EXPECT_FALSE(isRight(Method::kGetIndex, {kMonitor}, kNotFound));
  EXPECT_TRUE(isRight(Method::kGetIndex, {kUnknown}, kNotFound));
  EXPECT_FALSE(isRight(Method::kGetScale, {kFirst}, "0"));
  EXPECT_TRUE(isRight(Method::kDisplayIDForWindow, {10, 10, 100, 50}, "70"));
  EXPECT_TRUE(isRight(Method::kDisplayIDForWindow, {10, 700, 100, 200}, textOf({kMonitor})));
  EXPECT_FALSE(isRight(Method::kDisplayIDForWindow, {10, 10, 100, 50}, "0"));
  EXPECT_EQ(judge.wrong(), 5U);
  EXPECT_EQ(judge.complaints().size(), 5U);
}

TEST_F(SoakJudge, RejectsWrongNames) {
  EXPECT_TRUE(isRight(Method::kGetName, {kSecond}, "Output 1"));
  EXPECT_FALSE(isRight(Method::kGetName, {kSecond}, "Output 0"));
  EXPECT_FALSE(isRight(Method::kGetName, {kSecond}, "UNKNOWN"));
  EXPECT_TRUE(isRight(Method::kGetName, {kMonitor}, "UNKNOWN"));
}

TEST_F(SoakJudge, RejectsAProfileThatIsNotTheLastAssigned) {
  EXPECT_TRUE(isRight(Method::kSetProfile, {0, 1}, "True"));
  EXPECT_TRUE(isRight(Method::kGetProfilePath, {kFirst}, world.choicePath(0, 1)));
  EXPECT_TRUE(isRight(Method::kSetProfile, {0, 2}, "True"));
  EXPECT_FALSE(isRight(Method::kGetProfilePath, {kFirst}, world.choicePath(0, 1)));
  EXPECT_FALSE(isRight(Method::kGetProfilePath, {kFirst}, ""));
  EXPECT_FALSE(isRight(Method::kSetProfile, {0, 2}, "False"));
  EXPECT_EQ(judge.timedOut(), 0U);
  EXPECT_TRUE(isRight(Method::kGetProfilePath, {kFirst}, "", seconds(2)));
  EXPECT_EQ(judge.timedOut(), 1U);
}

TEST_F(SoakJudge, RejectsWrongListsOfADisplaysProfiles) {
  const std::string zero = world.choicePath(0, 0);
  const std::string one = world.choicePath(0, 1);
  const Profiles& profiles = world.profiles;
  ASSERT_LT(profiles.name(0), profiles.name(1));
  EXPECT_TRUE(isRight(Method::kSetProfile, {0, 0}, "True"));
  EXPECT_TRUE(isRight(Method::kSetProfile, {0, 1}, "True"));
  EXPECT_TRUE(isRight(Method::kGetAssociatedProfilePathsArray, {kFirst}, zero + "|" + one));
  EXPECT_FALSE(isRight(Method::kGetAssociatedProfilePathsArray, {kFirst}, one + "|" + zero));
  EXPECT_FALSE(isRight(Method::kGetAssociatedProfilePathsArray, {kFirst}, one));
  const std::string events = profiles.name(0) + "=" + zero + "|" + profiles.name(1) + "=" + one;
  EXPECT_TRUE(isRight(Method::kListDisplayProfiles, {kFirst}, events));
  EXPECT_FALSE(isRight(Method::kListDisplayProfiles, {kFirst}, "=" + zero + "|=" + one));
  EXPECT_TRUE(isRight(Method::kGetAssociatedProfilePathsArray, {kUnknown}, zero + "|" + one)) << "the list before";
  EXPECT_FALSE(isRight(Method::kGetAssociatedProfilePathsArray, {kUnknown}, ""));
  EXPECT_TRUE(isRight(Method::kGetAssociatedProfilePathsArray, {kMonitor}, ""));
}

TEST_F(SoakJudge, RejectsWrongListsOfInstalledProfiles) {
  const std::string events = world.profiles.expectedEvents(false);
  const std::string array = world.profiles.expectedArray(false);
  EXPECT_TRUE(events.starts_with("100 of "));
  EXPECT_NE(events, array);
  EXPECT_TRUE(isRight(Method::kSetObject, {1}, ""));
  EXPECT_TRUE(isRight(Method::kListAllInstalledProfiles, {}, events + ", listener 1"));
  EXPECT_FALSE(isRight(Method::kListAllInstalledProfiles, {}, events + ", listener 0"));
  EXPECT_TRUE(isRight(Method::kGetInstalledProfilePathsArray, {}, array));
  EXPECT_FALSE(isRight(Method::kGetInstalledProfilePathsArray, {}, events));
  EXPECT_FALSE(isRight(Method::kGetInstalledProfilePathsArray, {}, world.profiles.expectedArray(true)));
}

TEST_F(SoakJudge, RejectsWrongTagsAndDocuments) {
  const std::string document = world.profiles.document(10);
  ASSERT_FALSE(document.empty());
  EXPECT_TRUE(isRight(Method::kQV02Read, {10}, "0 " + document));
  EXPECT_FALSE(isRight(Method::kQV02Read, {10}, "466 "));
  EXPECT_TRUE(isRight(Method::kQV02Read, {11}, "466 "));
  EXPECT_FALSE(isRight(Method::kQV02Read, {11}, "466 before"));
  EXPECT_TRUE(isRight(Method::kICCTagExists, {11, 0}, "True"));
  EXPECT_FALSE(isRight(Method::kICCTagExists, {11, 1}, "True"));
  EXPECT_FALSE(isRight(Method::kICCTagExists, {100, 0}, "True"));
}

TEST_F(SoakJudge, AcceptsBothStatesOnlyDuringTheChange) {
  const Time before = Clock::now() - seconds(10);
  Time amid;
  world.timeline.change(Clock::duration::zero(), [&](const State&) -> std::vector<State> {
    amid = Clock::now();
    EXPECT_TRUE(world.timeline.isKnownUntil(before));
    EXPECT_FALSE(world.timeline.isKnownUntil(amid));
    return {{{{kFirst, 0, 0, 1024, 768}}}};
  });
  EXPECT_TRUE(isRightAt(before, Method::kGetIndex, {kSecond}, "1"));
  EXPECT_FALSE(isRightAt(before, Method::kGetIndex, {kSecond}, kNotFound));
  EXPECT_TRUE(isRightAt(amid, Method::kGetIndex, {kSecond}, "1"));
  EXPECT_TRUE(isRightAt(amid, Method::kGetIndex, {kSecond}, kNotFound));
  EXPECT_EQ(judge.duringChanges(), 2U);
  EXPECT_TRUE(isRight(Method::kGetIndex, {kSecond}, kNotFound));
  EXPECT_FALSE(isRight(Method::kGetIndex, {kSecond}, "1"));
}

TEST_F(SoakJudge, AcceptsAMissingProfileOnlyWhileColordRestarts) {
  EXPECT_TRUE(isRight(Method::kSetProfile, {0, 1}, "True"));
  EXPECT_TRUE(isRight(Method::kSetProfile, {0, 2}, "True"));
  Time amid;
  world.timeline.change(Clock::duration::zero(), [&](const State& before) -> std::vector<State> {
    amid = Clock::now();
    State restarting = before;
    restarting.colord_runs = false;
    return {restarting, before};
  });
  EXPECT_TRUE(isRightAt(amid, Method::kGetProfilePath, {kFirst}, ""));
  EXPECT_TRUE(isRightAt(amid, Method::kGetProfilePath, {kFirst}, world.choicePath(0, 1)));
  EXPECT_FALSE(isRightAt(amid, Method::kGetProfilePath, {kFirst}, world.choicePath(1, 1)));
  EXPECT_FALSE(isRight(Method::kGetProfilePath, {kFirst}, world.choicePath(0, 1)));
  EXPECT_TRUE(isRight(Method::kGetProfilePath, {kFirst}, world.choicePath(0, 2)));
}

TEST(SoakMethods, SharesAddUpToTenThousand) {
  unsigned sum = 0;
  for (const MethodFacts& method : kMethods) {
    EXPECT_GT(method.share, 0U) << method.name;
    sum += method.share;
  }
  EXPECT_EQ(sum, 10000U);
}

}  // namespace
}  // namespace soak
