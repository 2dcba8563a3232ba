// Walks that outlive their query.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::device_iterator;
using DisplayServices::displayNameUsingColorSync;
using DisplayServices::ProfilePathForDisplay;

std::string queriedPath(CGDirectDisplayID number) {
  return path(OwnedRef<CFURLRef>::adopt(ProfilePathForDisplay(number)).get());
}

class LateWalk : public DisplayTest {
 protected:
  LateWalk() {
    edit([this](Script& script) {
      script.device_walk.hang = true;
      script_ = script;
    });
  }

  /// A query that gives up at once while its walk hangs.
  void giveUpOn(CGDirectDisplayID number) {
    waitInNoTime([this] { waitForBegunWalks(++begun_); });
    EXPECT_EQ(ProfilePathForDisplay(number), nullptr);
  }

  /// Walks that begin from now on do not hang.
  void stopHanging() {
    edit([](Script& script) { script.device_walk.hang = false; });
  }

  Script script_;
  unsigned begun_ = 0;
};

TEST_F(LateWalk, StoresItsMatch) {
  giveUpOn(1);
  EXPECT_EQ(text(device_iterator::device_name), "Empty");
  desktop_->releaseWalks();
  waitForWalks(1);
  EXPECT_EQ(path(device_iterator::profile_path), "/profiles/1.icc");
  EXPECT_EQ(text(device_iterator::device_name), "ColorSync 1");
}

TEST_F(LateWalk, DoesNotDisturbAQueryForAnotherDisplay) {
  giveUpOn(1);
  stopHanging();
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
  desktop_->releaseWalks();
  waitForWalks(2);
}

TEST_F(LateWalk, DoesNotDisturbAQueryThatItOverlaps) {
  giveUpOn(1);
  stopHanging();
  waitInNoTime([this] {
    desktop_->releaseWalks();
    waitForWalks(2);
  });
  EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
  EXPECT_EQ(text(device_iterator::device_name), "ColorSync 2");
}

TEST_F(LateWalk, IsDroppedBetweenAnotherMatchAndItsAnswer) {
  // The walk for display 1 stops in the last comparison of the entry that matches it ...
  Event reached_match;
  Event may_go_on;
  platform::calls::setHook(Call::CFEqual, [&](std::uint64_t nth) {
    if (nth == 4) {
      reached_match.happen();
      may_go_on.wait();
    }
    return Fault{};
  });
  stopHanging();
  waitInNoTime([&] { reached_match.wait(); });
  EXPECT_EQ(ProfilePathForDisplay(1), nullptr);
  // ... and continues between the match of display 2's walk and its query's read.
  waitInNoTime([&] {
    waitForWalks(1);
    may_go_on.happen();
    waitForWalks(2);
  });
  EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
  EXPECT_EQ(text(device_iterator::device_name), "ColorSync 2");
}

TEST_F(LateWalk, DoesNotDisturbANameQuery) {
  giveUpOn(1);
  stopHanging();
  waitInNoTime([this] {
    desktop_->releaseWalks();
    waitForWalks(2);
  });
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(3).get())), "ColorSync 3");
}

TEST_F(LateWalk, FortyDoNotDisturbAQuery) {
  constexpr unsigned kLateWalks = 40;
  for (unsigned i = 0; i < kLateWalks; ++i) {
    giveUpOn(1 + i % 3);
  }
  stopHanging();
  waitInNoTime([this] {
    desktop_->releaseWalks();
    waitForWalks(kLateWalks + 1);
  });
  EXPECT_EQ(queriedPath(3), "/profiles/3.icc");
}

TEST_F(LateWalk, DoesNotDisturbARacingQuery) {
  for (unsigned round = 0; round < 50; ++round) {
    // A desktop whose walks hang until they are released, and then never again.
    desktop_ = std::make_shared<ScriptedDesktop>(script_);
    platform::desktop::setCurrent(desktop_);
    giveUpOn(1);
    stopHanging();
    std::thread releaser([this] { desktop_->releaseWalks(); });
    waitInRealTime();
    EXPECT_EQ(queriedPath(2), "/profiles/2.icc");
    releaser.join();
    ++begun_;
    waitForWalks(2 * (round + 1));
  }
}

// --- the end of the process

std::function<void()>* at_the_very_end = nullptr;

/// Runs after the destructors of all static objects.
__attribute__((destructor)) void runAtTheVeryEnd() {
  if (at_the_very_end != nullptr) {
    (*at_the_very_end)();
  }
}

using LateWalkDeathTest = LateWalk;

TEST_F(LateWalkDeathTest, MayHangWhileTheProcessExits) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        giveUpOn(1);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(LateWalkDeathTest, MayMatchAfterStaticDestruction) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        giveUpOn(1);
        at_the_very_end = new std::function<void()>([this] {
          desktop_->releaseWalks();
          waitForWalks(1);
          std::fprintf(stderr, "late match: %s\n", path(device_iterator::profile_path).c_str());
        });
        std::exit(0);
      },
      testing::ExitedWithCode(0), "late match: /profiles/1.icc");
}

}  // namespace
