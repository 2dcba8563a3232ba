// The set of active displays, and whether it has changed.
#include "display/scripted_displays.h"
#include "support/scripted.h"

namespace {

using namespace display_tests;
using DisplayServices::BuildInitialMonitorsSet;
using DisplayServices::DisplaysChanged;
using DisplayServices::monitors_set;
using support::faultOnce;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class MonitorsSet : public DisplayTest {
 protected:
  MonitorsSet() { monitors_set::initialSet.clear(); }
  ~MonitorsSet() override { monitors_set::initialSet.clear(); }

  static monitors_set::UuidSet build() {
    monitors_set::UuidSet set;
    monitors_set::buildSet(&set);
    return set;
  }
};

TEST_F(MonitorsSet, HoldsTheUuidsOfTheActiveDisplays) {
  EXPECT_THAT(build(), UnorderedElementsAre(makeUuid(1).get(), makeUuid(2).get(), makeUuid(3).get()));
}

TEST_F(MonitorsSet, BuildAddsToWhatIsThere) {
  const auto other = makeUuid(9);
  monitors_set::UuidSet set = {other.get()};
  monitors_set::buildSet(&set);
  EXPECT_THAT(set, SizeIs(4));
  monitors_set::buildSet(&set);
  EXPECT_THAT(set, SizeIs(4));
}

TEST_F(MonitorsSet, BuildLeaksOneReferencePerDisplay) {
  const auto uuid = makeUuid(1);
  const CFIndex before = CFGetRetainCount(uuid.get());
  monitors_set::UuidSet set;
  monitors_set::buildSet(&set);
  monitors_set::buildSet(&set);
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before + 2);
}

TEST_F(MonitorsSet, HasEachUuidOnce) {
  edit([](Script& script) { script.arrangement.displays[1].uuid = uuidOf(1); });
  EXPECT_THAT(build(), SizeIs(2));
}

TEST_F(MonitorsSet, IsEmptyWithoutDisplaysAfterOneCall) {
  edit([](Script& script) { script.arrangement.displays.clear(); });
  const auto before = count(Call::CGGetActiveDisplayList);
  EXPECT_THAT(build(), SizeIs(0));
  EXPECT_EQ(count(Call::CGGetActiveDisplayList), before + 1);
}

TEST_F(MonitorsSet, StaysEmptyWhenListingFails) {
  fail(Call::CGGetActiveDisplayList, 1);
  EXPECT_THAT(build(), SizeIs(0));
  fail(Call::CGGetActiveDisplayList, 2);
  EXPECT_THAT(build(), SizeIs(0));
}

TEST_F(MonitorsSet, IgnoresAnErrorWithACount) {
  faultOnce(Call::CGGetActiveDisplayList, 1, {.late_error = kCGErrorFailure});
  EXPECT_THAT(build(), SizeIs(3));
}

TEST_F(MonitorsSet, StaysEmptyAfterAnErrorWithAList) {
  faultOnce(Call::CGGetActiveDisplayList, 2, {.late_error = kCGErrorFailure});
  EXPECT_THAT(build(), SizeIs(0));
}

TEST_F(MonitorsSet, ReadsNoFurtherThanItsBuffer) {
  faultOnce(Call::CGGetActiveDisplayList, 2, {.number = 1000});
  EXPECT_THAT(build(), SizeIs(3));
}

TEST_F(MonitorsSet, HasOnlyListedDisplays) {
  faultOnce(Call::CGGetActiveDisplayList, 2, {.number = 1});
  EXPECT_THAT(build(), UnorderedElementsAre(makeUuid(1).get()));
  faultOnce(Call::CGGetActiveDisplayList, 2, {.number = 0});
  EXPECT_THAT(build(), SizeIs(0));
}

TEST_F(MonitorsSet, HasOnlyCountedDisplays) {
  faultOnce(Call::CGGetActiveDisplayList, 1, {.number = 2});
  EXPECT_THAT(build(), UnorderedElementsAre(makeUuid(1).get(), makeUuid(2).get()));
}

TEST_F(MonitorsSet, CountsADisplayWithoutUuidAsNull) {
  edit([](Script& script) { script.arrangement.displays[0].uuid.reset(); });
  EXPECT_THAT(build(), UnorderedElementsAre(nullptr, makeUuid(2).get(), makeUuid(3).get()));
}

TEST_F(MonitorsSet, CountsTheNumber0LikeAnyOther) {
  edit([](Script& script) { script.arrangement.displays[1].number = 0; });
  EXPECT_THAT(build(), UnorderedElementsAre(makeUuid(1).get(), makeUuid(2).get(), makeUuid(3).get()));
}

TEST_F(MonitorsSet, AcceptsANullSet) { monitors_set::buildSet(nullptr); }

using DisplaysChangedResult = MonitorsSet;

TEST_F(DisplaysChangedResult, ReturnsFalseAfterTheInitialSet) {
  BuildInitialMonitorsSet();
  EXPECT_FALSE(DisplaysChanged());
  EXPECT_FALSE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ReturnsTrueOnceWithoutAnInitialSet) {
  EXPECT_TRUE(DisplaysChanged());
  EXPECT_FALSE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ReturnsFalseWithoutDisplays) {
  edit([](Script& script) { script.arrangement.displays.clear(); });
  EXPECT_FALSE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ReturnsTrueOnceForEachChange) {
  BuildInitialMonitorsSet();
  edit([](Script& script) { script.arrangement.displays.push_back(display(4)); });
  EXPECT_TRUE(DisplaysChanged());
  EXPECT_FALSE(DisplaysChanged());
  edit([](Script& script) { script.arrangement.displays.pop_back(); });
  EXPECT_TRUE(DisplaysChanged());
  EXPECT_FALSE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ReturnsTrueForAReplacedDisplay) {
  BuildInitialMonitorsSet();
  edit([](Script& script) { script.arrangement.displays[2].uuid = uuidOf(4); });
  EXPECT_TRUE(DisplaysChanged());
  EXPECT_FALSE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ReturnsFalseForAnotherArrangement) {
  BuildInitialMonitorsSet();
  edit([](Script& script) {
    auto& displays = script.arrangement.displays;
    std::swap(displays[0], displays[2]);
    displays[0].bounds = {-1440.5, 30, 1280, 720};
    displays[1].number = 77;
  });
  EXPECT_FALSE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ReturnsTrueWhenListingFailsAndRecovers) {
  BuildInitialMonitorsSet();
  fail(Call::CGGetActiveDisplayList);
  EXPECT_TRUE(DisplaysChanged());
  EXPECT_FALSE(DisplaysChanged());
  platform::calls::removeAllHooks();
  EXPECT_TRUE(DisplaysChanged());
}

TEST_F(DisplaysChangedResult, ComparesWithAllInitialSets) {
  BuildInitialMonitorsSet();
  edit([](Script& script) { script.arrangement.displays.pop_back(); });
  BuildInitialMonitorsSet();
  EXPECT_THAT(monitors_set::initialSet, SizeIs(3)) << "a second look adds, it does not start afresh";
  EXPECT_TRUE(DisplaysChanged());
  EXPECT_THAT(monitors_set::initialSet, SizeIs(2));
}

}  // namespace
