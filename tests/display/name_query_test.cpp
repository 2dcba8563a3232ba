// What ColorSync calls a display.
#include "display/scripted_displays.h"

namespace {

using namespace display_tests;
using DisplayServices::device_iterator;
using DisplayServices::displayNameUsingColorSync;
using testing::ElementsAre;
using testing::IsEmpty;

using NameQuery = DisplayTest;

TEST_F(NameQuery, ReturnsTheDeviceDescription) {
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(2).get())), "ColorSync 2");
}

TEST_F(NameQuery, ReturnsUnknownWithoutAMatch) {
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(9).get())), "UNKNOWN");
  EXPECT_THAT(limits(), ElementsAre(std::chrono::seconds(10)));
}

TEST_F(NameQuery, ReturnsUnknownAtOnceWithoutUuidOrQueue) {
  waitInNoTime();
  const auto uuid = makeUuid(1);
  EXPECT_EQ(text(displayNameUsingColorSync(nullptr)), "UNKNOWN");
  fail(Call::CFUUIDCreateString);
  EXPECT_EQ(text(displayNameUsingColorSync(uuid.get())), "UNKNOWN");
  platform::calls::removeAllHooks();
  fail(Call::dispatch_queue_create);
  EXPECT_EQ(text(displayNameUsingColorSync(uuid.get())), "UNKNOWN");
  EXPECT_THAT(limits(), IsEmpty());
}

TEST_F(NameQuery, DoesNotPresetTheDeviceName) {
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(2).get())), "ColorSync 2");
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(9).get())), "UNKNOWN");
  EXPECT_EQ(text(device_iterator::device_name), "ColorSync 2");
}

TEST_F(NameQuery, DoesNotConsumeTheUuid) {
  const auto uuid = makeUuid(2);
  const CFIndex before = CFGetRetainCount(uuid.get());
  displayNameUsingColorSync(uuid.get());
  waitForWalks(1);
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before);
}

TEST_F(NameQuery, ReturnsANameThatStaysValid) {
  const CFStringRef name = displayNameUsingColorSync(makeUuid(2).get());
  EXPECT_EQ(text(displayNameUsingColorSync(makeUuid(3).get())), "ColorSync 3");
  waitForWalks(2);
  edit([](Script& script) { script = {}; });
  EXPECT_EQ(text(name), "ColorSync 2");
}

}  // namespace
