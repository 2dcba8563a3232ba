// How long the two ColorSync queries wait at most: 2 and 10 seconds.
#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::displayNameUsingColorSync;
using DisplayServices::ProfilePathForDisplay;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;

class TimeLimit : public DisplayTest {
 protected:
  void hang() {
    edit([](Script& script) { script.device_walk.hang = true; });
  }
  /// How long the query took, in real time.
  static milliseconds timeOf(const std::function<void()>& query) {
    const auto begin = std::chrono::steady_clock::now();
    query();
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
  }
};

constexpr milliseconds kSlack{1000};  // for a computer that is busy with other tests

TEST_F(TimeLimit, IsTwoSecondsForAProfileQuery) {
  hang();
  CFURLRef url = nullptr;
  const auto time = timeOf([&] { url = ProfilePathForDisplay(1); });
  EXPECT_EQ(url, nullptr);
  EXPECT_GE(time, seconds(2));
  EXPECT_LT(time, seconds(2) + kSlack);
}

TEST_F(TimeLimit, IsTenSecondsForANameQuery) {
  hang();
  std::string name;
  const auto time = timeOf([&] { name = text(displayNameUsingColorSync(makeUuid(1).get())); });
  EXPECT_EQ(name, "UNKNOWN");
  EXPECT_GE(time, seconds(10));
  EXPECT_LT(time, seconds(10) + kSlack);
}

TEST_F(TimeLimit, IsReachedWithoutAMatch) {
  edit([](Script& script) { script.device_profiles.clear(); });
  const auto time = timeOf([&] { EXPECT_EQ(ProfilePathForDisplay(1), nullptr); });
  waitForWalks(1);
  EXPECT_GE(time, seconds(2));
  EXPECT_LT(time, seconds(2) + kSlack);
}

TEST_F(TimeLimit, IsInWholeSeconds) {
  hang();
  waitInNoTime();
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(1).get())), "UNKNOWN");
  EXPECT_THAT(limits(), ElementsAre(seconds(2), seconds(10)));
}

TEST_F(TimeLimit, AllowsASlowWalk) {
  edit([](Script& script) { script.device_walk.delay = milliseconds(300); });
  std::string found;
  const auto time = timeOf([&] { found = path(OwnedRef<CFURLRef>::adopt(ProfilePathForDisplay(1)).get()); });
  EXPECT_EQ(found, "/profiles/1.icc");
  EXPECT_GE(time, milliseconds(300));
  EXPECT_LT(time, seconds(2));
}

}  // namespace
