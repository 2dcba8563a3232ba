// That the soak's judge notices wrong answers, and knows which ones a change excuses.
#include <gtest/gtest.h>

#include "soak/oracle.h"
#include "support/process.h"
#include "support/temporary_folder.h"

namespace soak {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint32_t kFirst = 70;
constexpr std::uint32_t kSecond = 71;
constexpr std::uint32_t kDefined = 0x80000123;

Plan plan(const std::string& folder) {
  Plan plan;
  plan.profiles = 100;
  plan.folder = folder;
  plan.outputs = {kFirst, kSecond};
  plan.others = {kDefined};
  return plan;
}

class SoakOracle : public testing::Test {
 protected:
  /// Judges a call that lasts a millisecond, long after whatever happened before; true when it was right.
  bool isRight(Call call) {
    now_ += seconds(10);
    call.begin = now_;
    call.end = now_ + took;
    const std::size_t before = oracle.wrong();
    oracle.judge(call);
    return oracle.wrong() == before;
  }
  /// The same for a call that was made while something changed.
  bool isRightAt(Time time, Call call) {
    call.begin = time;
    call.end = time + milliseconds(1);
    const std::size_t before = oracle.wrong();
    oracle.judge(call);
    return oracle.wrong() == before;
  }
  std::string file(std::size_t output, std::size_t choice) {
    return world.profiles.path(world.plan.fileOf(output, choice));
  }

  support::TemporaryFolder folder;
  World world{plan(folder.path()),
              {{kFirst, 0, 0, 1024, 768}, {kSecond, 1024, 0, 800, 600}, {kDefined, 0, 768, 640, 480}}};
  Oracle oracle{world};
  Clock::duration took = milliseconds(1);

 private:
  Time now_ = Clock::now() + std::chrono::hours(1);
};

TEST_F(SoakOracle, NoticesWrongEdges) {
  EXPECT_TRUE(isRight({.method = Method::kGetRect, .arguments = {kSecond}, .numbers = {1024, 0, 1824, 600}}));
  EXPECT_FALSE(isRight({.method = Method::kGetRect, .arguments = {kSecond}, .numbers = {1024, 0, 1824, 601}}));
  EXPECT_TRUE(isRight({.method = Method::kGetCGRect, .arguments = {kSecond}, .numbers = {1024, 0, 800, 600}}));
  EXPECT_FALSE(isRight({.method = Method::kGetCGRect, .arguments = {kSecond}, .numbers = {0, 0, 0, 0}}));
  EXPECT_TRUE(isRight({.method = Method::kGetCGRect, .arguments = {9}, .numbers = {0, 0, 0, 0}}));
  EXPECT_EQ(oracle.wrong(), 2U);
  EXPECT_EQ(oracle.complaints().size(), 2U);
}

TEST_F(SoakOracle, NoticesWrongNumbers) {
  EXPECT_TRUE(isRight({.method = Method::kGetIndex, .arguments = {kDefined}, .numbers = {2}}));
  EXPECT_FALSE(isRight({.method = Method::kGetIndex, .arguments = {kDefined}, .numbers = {4099018739}}));
  EXPECT_TRUE(isRight({.method = Method::kGetIndex, .arguments = {9}, .numbers = {4099018739}}));
  EXPECT_FALSE(isRight({.method = Method::kGetScale, .arguments = {kFirst}, .numbers = {0}}));
  EXPECT_TRUE(isRight({.method = Method::kDisplayIDForWindow, .arguments = {10, 10, 100, 50}, .numbers = {kFirst}}));
  EXPECT_TRUE(
      isRight({.method = Method::kDisplayIDForWindow, .arguments = {10, 700, 100, 200}, .numbers = {kDefined}}));
  EXPECT_FALSE(isRight({.method = Method::kDisplayIDForWindow, .arguments = {10, 10, 100, 50}, .numbers = {0}}));
}

TEST_F(SoakOracle, NoticesWrongNames) {
  EXPECT_TRUE(isRight({.method = Method::kGetName, .arguments = {kSecond}, .text = "Output 1"}));
  EXPECT_FALSE(isRight({.method = Method::kGetName, .arguments = {kSecond}, .text = "Output 0"}));
  EXPECT_FALSE(isRight({.method = Method::kGetName, .arguments = {kSecond}, .text = "UNKNOWN"}));
  EXPECT_TRUE(isRight({.method = Method::kGetName, .arguments = {kDefined}, .text = "UNKNOWN"}));
}

TEST_F(SoakOracle, NoticesAProfileThatWasNotAssignedLast) {
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 1}, .numbers = {1}}));
  EXPECT_TRUE(isRight({.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = file(0, 1)}));
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 2}, .numbers = {1}}));
  EXPECT_FALSE(isRight({.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = file(0, 1)}));
  EXPECT_FALSE(isRight({.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = ""}));
  EXPECT_FALSE(isRight({.method = Method::kSetProfile, .arguments = {0, 2}, .numbers = {0}}));
  EXPECT_EQ(oracle.gaveUp(), 0U);
}

TEST_F(SoakOracle, CountsAQueryThatTookItsWholeTimeApart) {
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 1}, .numbers = {1}}));
  took = seconds(2);
  EXPECT_TRUE(isRight({.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = ""}));
  EXPECT_EQ(oracle.gaveUp(), 1U);
}

TEST_F(SoakOracle, NoticesWrongListsOfADisplaysProfiles) {
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 0}, .numbers = {1}}));
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 1}, .numbers = {1}}));
  const std::string zero = file(0, 0);
  const std::string one = file(0, 1);
  const Profiles& profiles = world.profiles;
  ASSERT_LT(profiles.name(0), profiles.name(1));
  EXPECT_TRUE(
      isRight({.method = Method::kGetAssociatedProfilePathsArray, .arguments = {kFirst}, .text = zero + "|" + one}));
  EXPECT_FALSE(
      isRight({.method = Method::kGetAssociatedProfilePathsArray, .arguments = {kFirst}, .text = one + "|" + zero}));
  EXPECT_FALSE(isRight({.method = Method::kGetAssociatedProfilePathsArray, .arguments = {kFirst}, .text = one}));
  EXPECT_TRUE(isRight({.method = Method::kListDisplayProfiles,
                       .arguments = {kFirst},
                       .text = profiles.name(0) + "=" + zero + "|" + profiles.name(1) + "=" + one}));
  EXPECT_TRUE(isRight({.method = Method::kGetAssociatedProfilePathsArray, .arguments = {9}, .text = zero + "|" + one}))
      << "an unknown display answers the list before";
  EXPECT_FALSE(isRight({.method = Method::kGetAssociatedProfilePathsArray, .arguments = {9}, .text = ""}));
  EXPECT_TRUE(isRight({.method = Method::kGetAssociatedProfilePathsArray, .arguments = {kDefined}, .text = ""}));
  EXPECT_FALSE(
      isRight({.method = Method::kListDisplayProfiles, .arguments = {kFirst}, .text = "=" + zero + "|=" + one}));
}

TEST_F(SoakOracle, NoticesWrongListsOfInstalledProfiles) {
  EXPECT_TRUE(isRight({.method = Method::kSetObject, .arguments = {1}}));
  const ListDigest events = world.profiles.expectedEvents(false);
  const ListDigest array = world.profiles.expectedArray(false);
  EXPECT_EQ(events.own, 100U);
  EXPECT_NE(events.text, array.text);
  const auto numbers = [](const ListDigest& digest, double listener) -> std::array<double, 4> {
    return {static_cast<double>(digest.own), static_cast<double>(digest.others), listener, 0};
  };
  EXPECT_TRUE(
      isRight({.method = Method::kListAllInstalledProfiles, .numbers = numbers(events, 1), .text = events.text}));
  EXPECT_FALSE(
      isRight({.method = Method::kListAllInstalledProfiles, .numbers = numbers(events, 0), .text = events.text}));
  EXPECT_TRUE(
      isRight({.method = Method::kGetInstalledProfilePathsArray, .numbers = numbers(array, 0), .text = array.text}));
  EXPECT_FALSE(
      isRight({.method = Method::kGetInstalledProfilePathsArray, .numbers = numbers(array, 0), .text = events.text}));
  const ListDigest more = world.profiles.expectedArray(true);
  EXPECT_FALSE(
      isRight({.method = Method::kGetInstalledProfilePathsArray, .numbers = numbers(more, 0), .text = more.text}));
}

TEST_F(SoakOracle, NoticesWrongTagsAndDocuments) {
  const std::string document = world.profiles.document(10);
  ASSERT_FALSE(document.empty());
  EXPECT_TRUE(isRight({.method = Method::kQV02Read, .arguments = {10}, .numbers = {0}, .text = document}));
  EXPECT_FALSE(isRight({.method = Method::kQV02Read, .arguments = {10}, .numbers = {466}, .text = ""}));
  EXPECT_TRUE(isRight({.method = Method::kQV02Read, .arguments = {11}, .numbers = {466}, .text = ""}));
  EXPECT_FALSE(isRight({.method = Method::kQV02Read, .arguments = {11}, .numbers = {466}, .text = "before"}));
  EXPECT_TRUE(isRight({.method = Method::kICCTagExists, .arguments = {11, 0}, .numbers = {1}}));
  EXPECT_FALSE(isRight({.method = Method::kICCTagExists, .arguments = {11, 1}, .numbers = {1}}));
  EXPECT_FALSE(isRight({.method = Method::kICCTagExists, .arguments = {100, 0}, .numbers = {1}}));
}

TEST_F(SoakOracle, TakesBothAnswersWhileSomethingChangesAndOneAfterwards) {
  const Time before = Clock::now() - seconds(10);
  Time amid;
  world.arrangement.change([&]() -> std::vector<Arrangement> {
    amid = Clock::now();
    EXPECT_TRUE(oracle.canJudge({.begin = before, .end = before}));
    EXPECT_FALSE(oracle.canJudge({.begin = before, .end = amid}));
    return {{{kFirst, 0, 0, 1024, 768}}};
  });
  const Call as_before{.method = Method::kGetIndex, .arguments = {kSecond}, .numbers = {1}};
  const Call as_after{.method = Method::kGetIndex, .arguments = {kSecond}, .numbers = {4099018739}};
  EXPECT_TRUE(isRightAt(before, as_before));
  EXPECT_FALSE(isRightAt(before, as_after));
  EXPECT_TRUE(isRightAt(amid, as_before));
  EXPECT_TRUE(isRightAt(amid, as_after));
  EXPECT_EQ(oracle.duringChanges(), 2U);
  EXPECT_TRUE(isRight(as_after));
  EXPECT_FALSE(isRight(as_before));
}

TEST_F(SoakOracle, LetsADisplayHaveNoProfileOnlyWhileColordRestarts) {
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 1}, .numbers = {1}}));
  EXPECT_TRUE(isRight({.method = Method::kSetProfile, .arguments = {0, 2}, .numbers = {1}}));
  Time amid;
  world.colord_runs.change([&]() -> std::vector<bool> {
    amid = Clock::now();
    return {false, true};
  });
  EXPECT_TRUE(isRightAt(amid, {.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = ""}));
  EXPECT_TRUE(isRightAt(amid, {.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = file(0, 1)}));
  EXPECT_FALSE(isRightAt(amid, {.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = file(1, 1)}));
  EXPECT_FALSE(isRight({.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = file(0, 1)}));
  EXPECT_TRUE(isRight({.method = Method::kGetProfilePath, .arguments = {kFirst}, .text = file(0, 2)}));
}

TEST(SoakRecord, ComesThroughThePipeAsItWas) {
  Call call{.method = Method::kGetCGRect,
            .arguments = {-1, 2, 3, 4294967295},
            .numbers = {0.1, -2560.5, 1e9, 0},
            .text = "a b|c"};
  call.begin = Clock::now();
  call.end = call.begin + milliseconds(3);
  const auto read = parseCall(lineOf(call));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->method, call.method);
  EXPECT_EQ(read->begin, call.begin);
  EXPECT_EQ(read->end, call.end);
  EXPECT_EQ(read->arguments, call.arguments);
  EXPECT_EQ(read->numbers, call.numbers);
  EXPECT_EQ(read->text, call.text);
  EXPECT_FALSE(parseCall("call 99 1 2\t"));
  EXPECT_FALSE(parseCall(lineOf(measureMemory())));
}

TEST(SoakPlan, HasTheCallsItSays) {
  int sum = 0;
  for (std::size_t method = 0; method < kMethods; ++method) {
    EXPECT_GT(shareOf(static_cast<Method>(method)), 0);
    sum += shareOf(static_cast<Method>(method));
  }
  EXPECT_EQ(sum, 10000);
  Plan plan;
  plan.outputs = {1, 2};
  plan.others = {kDefined};
  const Plan read = planOf(wordsOf(plan));
  EXPECT_EQ(read.calls(), 600000U);
  EXPECT_EQ(read.outputs, plan.outputs);
  EXPECT_EQ(read.others, plan.others);
}

}  // namespace
}  // namespace soak
